#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/linked_files.h"
#include "platform/model/objects/note_state.h"

namespace tavimodel {

class ManagedObjectContext;
class NoteReader;

/// A note of a context, which owns its state. What is read is loaded on first use and stays; what
/// is changed stays in memory until the context saves, and is undone by its rollback.
class KVNote {
 public:
  /// The note with this identifier, in any location, or null.
  static KVNote* noteWithUniqueIdentifier(std::string_view identifier,
                                          ManagedObjectContext& context);
  /// All notes with this title, but for case and canonical equivalence, in any location; without
  /// those that are permanently deleted.
  static std::vector<KVNote*> notesWithTitle(std::string_view title, ManagedObjectContext& context);
  /// A new note of the text; title, tags and to-dos are derived from it.
  static KVNote& noteWithText(std::string text, ManagedObjectContext& context);
  /// What a note that comes from elsewhere brings along. Dates: seconds since 1970-01-01 UTC.
  struct Origin {
    std::string uniqueIdentifier;  ///< of no note in the database; empty: a new random one
    std::optional<double> creationDate, modificationDate;
  };
  static KVNote& noteWithText(std::string text, Origin origin, ManagedObjectContext& context);

  KVNote(ManagedObjectContext& context, HeldNote& held) : context_(context), held_(held) {}
  KVNote(const KVNote&) = delete;
  KVNote& operator=(const KVNote&) = delete;

  ManagedObjectContext& context() const { return context_; }
  const std::string& uniqueIdentifier() const { return held_.now.row.uniqueIdentifier; }
  const std::optional<std::string>& title() const { return held_.now.row.title; }
  std::optional<double> creationDate() const { return held_.now.row.creationDate; }
  std::optional<double> modificationDate() const { return held_.now.row.modificationDate; }
  bool encryptedValue() const { return held_.now.row.encrypted; }
  bool trashedValue() const { return held_.now.row.trashed; }
  bool archivedValue() const { return held_.now.row.archived; }
  bool pinnedValue() const { return held_.now.row.pinned; }

  /// The Markdown; absent counts as empty.
  const std::string& text();
  /// The same, which the note does not keep where it has not read it yet.
  std::string textOnce();
  /// Calls `visit` with the text, neither kept nor copied: for one that is only looked at and may
  /// be huge. It is good until `visit` returns.
  void readText(const std::function<void(std::string_view)>& visit);
  /// Of the text: hash, length, to-dos.
  const TextFacts& textFacts();
  std::int32_t todoIncompleteValue() {
    return static_cast<std::int32_t>(textFacts().todoIncomplete);
  }
  std::int32_t todoCompletedValue() { return static_cast<std::int32_t>(textFacts().todoCompleted); }
  /// Canonical names, without order.
  const std::vector<std::string>& tagsStrings();
  /// Names of the tags in which the note is pinned, without order.
  const std::vector<std::string>& pinnedInTags();
  const std::vector<KVNoteFile>& orderedFiles();
  /// The file of this name or, without one, of a canonically equivalent one; null: there is none.
  const KVNoteFile* attachmentForFilename(std::string_view filename);
  /// Where a file's bytes lie, or nothing when they are not on this machine.
  std::optional<std::filesystem::path> fileURL(const KVNoteFile& file) const;

  /// Replaces the text, and derives title, tags, to-dos and the order of the files from it at once,
  /// also where the text is the same: another program may have left them out of step. What happens
  /// to files whose links vanish is the caller's choice (see linked_files.h).
  void updateNoteWithText(std::string text, bool updateModificationDate,
                          UnlinkedFiles unlinked = UnlinkedFiles::keep);
  void trash();
  /// To the notes, also where the note is archived besides.
  void restoreFromTrash();
  void archive();
  void unarchive();
  void pin();
  void unpin();
  /// Writes down other tags for a note whose text stays: a locked one.
  void setTagsStrings(std::vector<std::string> tagNames);
  void pinInTag(const std::string& tagName);
  void unpinInTag(const std::string& tagName);
  /// Whether a link of this name in the note's text is one to `file` (of this note).
  bool linkNames(std::string_view linked, const KVNoteFile& file);
  /// Adds a file whose bytes are staged; its position is the last one.
  const KVNoteFile& addFile(KVNoteFile file);
  /// Takes a file off the note, whether its text links it or not.
  void removeFile(const KVNoteFile& file);

 private:
  /// The value, read from the database on first use.
  template <class Value>
  const Value& loaded(std::optional<Value> NoteState::*member,
                      Value (NoteReader::*read)(std::int64_t note));
  /// Keeps what the database holds, for the save and for a rollback.
  void willChange();
  void dropLargeText();
  void setFlag(bool NoteRow::*flag, bool value);

  ManagedObjectContext& context_;
  HeldNote& held_;
};

}  // namespace tavimodel

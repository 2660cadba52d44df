#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/large_text.h"
#include "platform/model/objects/linked_files.h"
#include "platform/model/objects/note_state.h"
#include "platform/model/search/index_changes.h"

namespace tavimodel {

class ManagedObjectContext;
class NoteReader;

/// What a note's text says.
struct TextReading {
  static TextReading of(std::string_view text);
  /// Of a text that has already been parsed.
  static TextReading of(std::string_view text, zephyrdown::ZDKTextSummary summary);

  zephyrdown::ZDKTextSummary summary;
  TextFacts facts;
};

/// A note of a context, which owns its state. Attributes are loaded on first use and cached.
/// Changes stay in memory until the context saves them; its rollback undoes them.
class KVNote {
 public:
  /// The note with this identifier in any location; null if there is none.
  static KVNote* noteWithUniqueIdentifier(std::string_view identifier,
                                          ManagedObjectContext& context);
  /// All notes in any location whose titles equal `title`, ignoring case and Unicode normalization,
  /// except permanently deleted notes.
  static std::vector<KVNote*> notesWithTitle(std::string_view title, ManagedObjectContext& context);
  /// Creates a note; its title, tags and to-dos are derived from the text.
  static KVNote& noteWithText(std::string text, ManagedObjectContext& context);
  /// Attributes of an imported note. Dates are in seconds since 1970-01-01 UTC.
  struct Origin {
    std::string uniqueIdentifier;  ///< must not be in use; empty: a new random one
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
  bool isIndexed() const { return held_.now.row.searchRow.has_value(); }

  /// The Markdown text; empty if absent.
  const std::string& text();
  /// The text, without caching it if it was not cached before.
  std::string textOnce();
  /// Calls `visit` with the text, without caching or copying it, as it may be huge. The view is
  /// valid until `visit` returns.
  void readText(const std::function<void(std::string_view)>& visit);
  /// The text, to be read in parts, if it is large and not cached; otherwise absent.
  std::optional<LargeText> textInParts();
  /// The text's hash, length and to-do counts.
  const TextFacts& textFacts();
  /// The same, if another program has not changed the text since they were derived.
  const std::optional<TextFacts>& knownFacts() const { return held_.now.row.facts; }
  std::int32_t todoIncompleteValue() {
    return static_cast<std::int32_t>(textFacts().todoIncomplete);
  }
  std::int32_t todoCompletedValue() { return static_cast<std::int32_t>(textFacts().todoCompleted); }
  /// Canonical names, unordered.
  const std::vector<std::string>& tagsStrings();
  /// Names of the tags in which the note is pinned, unordered.
  const std::vector<std::string>& pinnedInTags();
  /// The attached files, ascending by position.
  const std::vector<KVNoteFile>& orderedFiles();
  /// The file with this name or, if there is none, with a canonically equivalent name; otherwise
  /// null.
  const KVNoteFile* attachmentForFilename(std::string_view filename);
  /// The path of a file's bytes; absent if they are not on this machine.
  std::optional<std::filesystem::path> fileURL(const KVNoteFile& file) const;

  /// Replaces the text, and derives title, tags, to-dos and the order of the files from it, even if
  /// the text is the same, since another program may have left them inconsistent. `unlinked` says
  /// what to do with files whose links are removed.
  void updateNoteWithText(std::string text, bool updateModificationDate,
                          UnlinkedFiles unlinked = UnlinkedFiles::keep);
  /// Likewise for a text that has been read already, and not as a modification by the user.
  void updateNoteWithText(std::string text, TextReading reading);
  void trash();
  /// Moves the note out of the trash, and out of the archive if it is also there.
  void restoreFromTrash();
  void archive();
  void unarchive();
  void pin();
  void unpin();
  /// Replaces the tags without changing the text, for a locked note.
  void setTagsStrings(std::vector<std::string> tagNames);
  void pinInTag(const std::string& tagName);
  void unpinInTag(const std::string& tagName);
  /// Whether a link with this name in the note's text refers to `file`, one of the note's files.
  bool linkNames(std::string_view linked, const KVNoteFile& file);
  /// Adds a file whose bytes are staged, at the last position.
  const KVNoteFile& addFile(KVNoteFile file);
  /// Removes a file from the note, whether or not the text links to it.
  void removeFile(const KVNoteFile& file);

 private:
  friend class NoteBatches;
  /// Returns the value, which is read from the database on first use.
  template <class Value>
  const Value& loaded(std::optional<Value> NoteState::*member,
                      Value (NoteReader::*read)(std::int64_t note));
  /// Preserves the committed state before the first change, for the save and for a rollback.
  void willChange();
  void dropLargeText();
  /// Whether title, tags and positions of files are stored as a new text has them.
  bool agreesWith(const zephyrdown::ZDKTextSummary& summary, const std::vector<KVNoteFile>& files);
  void adopt(TextReading reading, std::vector<KVNoteFile> files);
  void setFlag(bool NoteRow::*flag, bool value);

  ManagedObjectContext& context_;
  HeldNote& held_;
};

/// A change of one note in two steps, since planning takes as long as reading and writing. Either
/// may be null. `plan` may run in another thread, and must not use the context.
struct NoteChange {
  std::function<void()> plan;
  std::function<void()> apply;
  /// Set by `plan` if it knows what becomes of the note's trigrams when only its text changes; may
  /// be null.
  std::shared_ptr<const std::optional<TrigramChange>> trigrams;
};

}  // namespace tavimodel

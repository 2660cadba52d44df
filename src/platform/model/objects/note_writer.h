#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/note_state.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Writes changes of notes, in the caller's transaction. Functions throw sqlite::Error.
class NoteWriter {
 public:
  explicit NoteWriter(sqlite::Connection& connection) : connection_(connection) {}

  /// Throws DomainError if another program has changed or deleted the note since it was read.
  void checkVersion(const NoteState& read);
  /// Inserts a note, and sets its id and version and the ids of its files.
  void insert(NoteState& note);
  /// Writes the differences between two states of a note, and sets its new version. Texts are
  /// compared by address.
  void update(NoteState& now, const NoteState& before);
  /// Whether two states of a note differ in nothing but the text, what is derived from it, and
  /// tags.
  static bool differInText(const NoteState& now, const NoteState& before);
  /// `checkVersion` and `update` for such a note, with triggers off: one statement does what three
  /// of theirs would. Returns false, with nothing done, if the note has changed or its facts are
  /// not known. `staysIndexed`: the note keeps its row in the search index, which the caller brings
  /// up to date; false is returned if it has none or another one than it was read with.
  bool updateText(NoteState& now, const NoteState& before, bool staysIndexed);
  /// Removes tags that these writes have left without notes, pins and descendants.
  void removeDeadTags();

 private:
  using Names = std::vector<std::string>;

  void clearText(std::int64_t note);
  void updateAttributes(const NoteRow& now, const NoteRow& before);
  void writeFacts(NoteRow& row);
  void writeTags(std::int64_t note, const Names& now, const Names& before);
  void writePins(std::int64_t note, const Names& now, const Names& before);
  void writeRelation(std::int64_t note, const Names& now, const Names& before, const char* unlink,
                     const char* link);
  void writeFiles(NoteState& note, const std::vector<KVNoteFile>& before);
  void insertFile(std::int64_t note, KVNoteFile& file);
  std::optional<std::int64_t> tagID(std::string_view name);
  /// Returns the tag's id. Inserts the tag and its ancestors if they are missing.
  std::int64_t tagIDMade(std::string_view name);

  sqlite::Connection& connection_;
  std::map<std::string, std::int64_t, std::less<>> tagIDs_;  ///< looked up already
  std::set<std::string> touchedTags_;
};

}  // namespace tavimodel

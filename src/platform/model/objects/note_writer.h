#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/note_state.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Writes the changes of notes, inside a transaction of the caller's.
class NoteWriter {
 public:
  explicit NoteWriter(sqlite::Connection& connection) : connection_(connection) {}

  /// Throws DomainError when somebody else has changed or removed the note since it was read.
  void checkVersion(const NoteState& read);
  /// Gives the note its id and version, and its files theirs.
  void insert(NoteState& note);
  /// Writes what differs; gives the note its new version. A text differs when it is another object.
  void update(NoteState& now, const NoteState& before);
  /// Removes the tags that these writes have left without notes, pins and descendants.
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
  /// The tag's id; the tag, and the ancestors that it lacks, are made where needed.
  std::int64_t tagIDMade(std::string_view name);

  sqlite::Connection& connection_;
  std::set<std::string> touchedTags_;
};

}  // namespace tavimodel

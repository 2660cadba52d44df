#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/note_state.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Reads notes and their tags, pins and files. Each call runs one statement, however many notes
/// there are. Functions throw sqlite::Error.
class NoteReader {
 public:
  explicit NoteReader(sqlite::Connection& connection) : connection_(connection) {}

  std::optional<NoteRow> rowWithIdentifier(std::string_view identifier);
  std::vector<NoteRow> rowsWithTitle(std::string_view title);
  /// The notes with a tag or, if `children`, also with a descendant of it, according to `relation`:
  /// "noteTag" or "pinnedInTag".
  std::vector<NoteRow> rowsWithTag(std::string_view relation, std::string_view tag, bool children);

  /// The note's text; empty if absent. `expectedLength` in bytes, or 0 if unknown, selects the
  /// faster way of reading.
  std::string text(std::int64_t note, std::int64_t expectedLength);
  std::vector<std::string> tags(std::int64_t note);
  std::vector<std::string> pinnedInTags(std::int64_t note);
  std::vector<KVNoteFile> files(std::int64_t note);

 private:
  sqlite::Connection& connection_;
};

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/objects/note_state.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Reads notes and what belongs to them. Each call is one statement, whatever the number of notes.
class NoteReader {
 public:
  explicit NoteReader(sqlite::Connection& connection) : connection_(connection) {}

  std::optional<NoteRow> rowWithIdentifier(std::string_view identifier);
  std::vector<NoteRow> rowsWithTitle(std::string_view title);
  /// The notes of a tag, and with `children` of the tags below it, by `relation`: "noteTag" or
  /// "pinnedInTag".
  std::vector<NoteRow> rowsWithTag(std::string_view relation, std::string_view tag, bool children);

  /// `expectedLength` in bytes, or 0 when it is not known, tells how a text is best read.
  std::string text(std::int64_t note, std::int64_t expectedLength);
  std::vector<std::string> tags(std::int64_t note);
  std::vector<std::string> pinnedInTags(std::int64_t note);
  std::vector<KVNoteFile> files(std::int64_t note);

 private:
  sqlite::Connection& connection_;
};

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/note.h"
#include "platform/model/sqlite.h"

namespace tavimodel {

/// A list of row ids as a JSON array, for `json_each(?)`: one statement for any number of rows.
std::string jsonArray(const std::vector<std::int64_t>& ids);

/// Reads notes and what belongs to them. Each call is one statement, whatever the number of notes.
class NoteReader {
 public:
  explicit NoteReader(sqlite::Connection& connection) : connection_(connection) {}

  std::optional<NoteRow> rowWithIdentifier(std::string_view identifier);
  std::vector<NoteRow> rowsWithTitle(std::string_view title);

  std::string text(std::int64_t note);
  std::vector<std::string> tags(std::int64_t note);
  std::vector<std::string> pinnedInTags(std::int64_t note);
  std::vector<KVNoteFile> files(std::int64_t note);

  /// Calls `visit` with each id and its text, in the order of `ids`.
  void forEachText(const std::vector<std::int64_t>& ids,
                   const std::function<void(std::size_t index, std::string_view text)>& visit);

 private:
  sqlite::Connection& connection_;
};

}  // namespace tavimodel

#include "platform/model/note_reader.h"

#include <fmt/format.h>

#include "platform/text/folding.h"

namespace tavimodel {
namespace {

std::vector<std::string> names(sqlite::Query query, std::int64_t note) {
  query.bind(1, note);
  std::vector<std::string> result;
  while (query.step()) result.emplace_back(query.text(0));
  return result;
}

KVNoteFile readFile(const sqlite::Query& query, int first) {
  KVNoteFile file;
  file.id = query.integer(first);
  if (!query.isNull(first + 1)) file.filename = query.text(first + 1);
  file.fileSizeValue = query.integer(first + 2);
  file.position = query.integer(first + 3);
  if (!query.isNull(first + 4)) file.storedName = query.text(first + 4);
  return file;
}

}  // namespace

std::string jsonArray(const std::vector<std::int64_t>& ids) {
  fmt::memory_buffer buffer;
  buffer.push_back('[');
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i > 0) buffer.push_back(',');
    const fmt::format_int digits(ids[i]);
    buffer.append(digits.data(), digits.data() + digits.size());
  }
  buffer.push_back(']');
  return fmt::to_string(buffer);
}

std::optional<NoteRow> NoteReader::rowWithIdentifier(std::string_view identifier) {
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.uniqueIdentifier = ?1", noteRowColumns));
  query.bind(1, identifier);
  if (!query.step()) return std::nullopt;
  return readNoteRow(query);
}

std::vector<NoteRow> NoteReader::rowsWithTitle(std::string_view title) {
  // A key that is not known is one whose title SQL could not fold.
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.titleKey = ?1 "
                  "OR (s.searchRow IS NULL AND s.titleKey IS NULL) ORDER BY s.note",
                  noteRowColumns));
  const std::string key = platform::text::foldedForSearch(title);
  query.bind(1, key);
  std::vector<NoteRow> rows;
  while (query.step()) {
    NoteRow row = readNoteRow(query);
    if (platform::text::foldedForSearch(row.title.value_or("")) == key)
      rows.push_back(std::move(row));
  }
  return rows;
}

std::string NoteReader::text(std::int64_t note) {
  sqlite::Query query = connection_.query("SELECT text FROM note WHERE id = ?1");
  query.bind(1, note);
  return query.step() ? std::string(query.text(0)) : std::string();
}

std::vector<std::string> NoteReader::tags(std::int64_t note) {
  return names(connection_.query("SELECT tag.title FROM noteTag JOIN tag ON tag.id = noteTag.tag "
                                 "WHERE noteTag.note = ?1"),
               note);
}

std::vector<std::string> NoteReader::pinnedInTags(std::int64_t note) {
  return names(
      connection_.query("SELECT tag.title FROM pinnedInTag "
                        "JOIN tag ON tag.id = pinnedInTag.tag WHERE pinnedInTag.note = ?1"),
      note);
}

std::vector<KVNoteFile> NoteReader::files(std::int64_t note) {
  sqlite::Query query = connection_.query(
      "SELECT id, filename, fileSize, position, storedName FROM file WHERE note = ?1 "
      "ORDER BY position, id");
  query.bind(1, note);
  std::vector<KVNoteFile> result;
  while (query.step()) result.push_back(readFile(query, 0));
  return result;
}

void NoteReader::forEachText(const std::vector<std::int64_t>& ids,
                             const std::function<void(std::size_t, std::string_view)>& visit) {
  sqlite::Query query = connection_.query(
      "SELECT note.text FROM json_each(?1) wanted CROSS JOIN note ON note.id = wanted.value");
  const std::string list = jsonArray(ids);
  query.bind(1, list);
  for (std::size_t index = 0; query.step(); ++index) visit(index, query.text(0));
}

}  // namespace tavimodel

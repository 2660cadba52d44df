#include "platform/model/objects/note_reader.h"

#include <fmt/format.h>

#include "platform/model/objects/large_text.h"
#include "platform/model/storage/tag_tree.h"
#include "platform/model/storage/title_keys.h"
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

std::optional<NoteRow> NoteReader::rowWithIdentifier(std::string_view identifier) {
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.uniqueIdentifier = ?1", noteRowColumns));
  query.bind(1, identifier);
  if (!query.step()) return std::nullopt;
  return readNoteRow(query);
}

std::vector<NoteRow> NoteReader::rowsWithTitle(std::string_view title) {
  sqlite::Query query =
      connection_.query(fmt::format("SELECT {} FROM noteSummary s WHERE ({} OR {}) "
                                    "AND ifnull(s.permanentlyDeleted, 0) = 0 ORDER BY s.note",
                                    noteRowColumns, TitleSQL::matches, TitleSQL::keyUnknown));
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

std::string NoteReader::text(std::int64_t note, std::int64_t expectedLength) {
  if (expectedLength >= largeText) return readLargeText(connection_, note).value_or("");
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

std::vector<NoteRow> NoteReader::rowsWithTag(std::string_view relation, std::string_view tag,
                                             bool children) {
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.note IN (SELECT note FROM {} WHERE tag IN "
                  "(SELECT id FROM tag WHERE {}))",
                  noteRowColumns, relation, children ? isInTagTree("title", "?1") : "title = ?1"));
  query.bind(1, tag);
  std::vector<NoteRow> rows;
  while (query.step()) rows.push_back(readNoteRow(query));
  return rows;
}

}  // namespace tavimodel

#include "platform/model/storage/note_row.h"

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

const std::string_view noteRowColumns =
    "s.note, s.version, s.uniqueIdentifier, s.title, s.creationDate, s.modificationDate, "
    "s.trashed, s.archived, s.permanentlyDeleted, s.pinned, s.encrypted, s.readOnly, "
    "s.searchRow, s.textDigest, s.textLength, s.todoIncomplete, s.todoCompleted, s.features";

NoteRow readNoteRow(const sqlite::Query& query, int first) {
  NoteRow row;
  int column = first;
  row.id = query.integer(column++);
  row.version = query.integer(column++);
  row.uniqueIdentifier = query.text(column++);
  if (!query.isNull(column)) row.title = query.text(column);
  ++column;
  row.creationDate = query.optionalReal(column++);
  row.modificationDate = query.optionalReal(column++);
  row.trashed = query.integer(column++) != 0;
  row.archived = query.integer(column++) != 0;
  row.permanentlyDeleted = query.integer(column++) != 0;
  row.pinned = query.integer(column++) != 0;
  row.encrypted = query.integer(column++) != 0;
  row.readOnly = query.integer(column++) != 0;
  if (!query.isNull(column)) row.searchRow = query.integer(column);
  ++column;
  if (query.isNull(column)) return row;
  TextFacts& facts = row.facts.emplace();
  facts.digest = query.text(column++);
  facts.length = query.integer(column++);
  facts.todoIncomplete = query.integer(column++);
  facts.todoCompleted = query.integer(column++);
  facts.features = query.integer(column);
  return row;
}

}  // namespace tavimodel

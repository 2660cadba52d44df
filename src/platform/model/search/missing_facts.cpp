#include "platform/model/search/missing_facts.h"

#include <fmt/format.h>

#include "platform/model/storage/note_texts.h"
#include "platform/model/storage/text_facts.h"

namespace tavimodel {

bool workOutMissingFacts(sqlite::Connection& connection) {
  sqlite::Query unknown = connection.query(
      fmt::format("SELECT note.id, {} FROM noteSummary s JOIN note ON note.id = s.note "
                  "WHERE s.searchRow IS NULL AND s.textDigest IS NULL AND s.encrypted = 0",
                  readableText));
  if (!unknown.step()) return false;
  connection.execute(
      "CREATE TEMP TABLE IF NOT EXISTS workedOut (note INTEGER PRIMARY KEY, "
      "todoIncomplete INTEGER, todoCompleted INTEGER, features INTEGER); "
      "DELETE FROM temp.workedOut");
  do {
    const TextFacts facts = TextFacts::of(unknown.text(1));
    sqlite::Query insert = connection.query("INSERT INTO temp.workedOut VALUES (?1, ?2, ?3, ?4)");
    insert.bind(1, unknown.integer(0)).bind(2, facts.todoIncomplete);
    insert.bind(3, facts.todoCompleted).bind(4, facts.features).run();
  } while (unknown.step());
  return true;
}

}  // namespace tavimodel

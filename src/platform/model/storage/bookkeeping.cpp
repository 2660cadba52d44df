#include "platform/model/storage/bookkeeping.h"

#include <chrono>
#include <exception>

#include "platform/model/storage/sqlite.h"
#include "platform/model/storage/text_facts.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

constexpr std::int64_t enoughForABatch = 64;
constexpr std::int64_t imported = 1000;  ///< so many at once come from an import
constexpr int batchMilliseconds = 100;
constexpr int importMilliseconds = 1000;

void writeFacts(sqlite::Connection& connection, int milliseconds) {
  const auto start = std::chrono::steady_clock::now();
  sqlite::Query notes = connection.query(
      "SELECT note.id, note.title, note.text FROM noteSummary s JOIN note ON note.id = s.note "
      "WHERE s.searchRow IS NULL AND s.textDigest IS NULL");
  while (notes.step()) {
    const TextFacts facts = TextFacts::of(notes.text(2));
    const std::string key = platform::text::foldedForSearch(notes.text(1));
    sqlite::Query update = connection.query(
        "UPDATE noteSummary SET titleKey = ?2, textDigest = ?3, textLength = ?4, "
        "todoIncomplete = ?5, todoCompleted = ?6, features = ?7 WHERE note = ?1");
    update.bind(1, notes.integer(0)).bind(2, key);
    update.bind(3, facts.digest).bind(4, facts.length);
    update.bind(5, facts.todoIncomplete).bind(6, facts.todoCompleted).bind(7, facts.features).run();
    if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(milliseconds)) return;
  }
}

}  // namespace

OpenWork openWork(sqlite::Connection& connection) {
  try {
    // One statement, since every command runs it. Notes whose facts are not known are among those
    // that are not indexed.
    sqlite::Query work = connection.query(
        "SELECT EXISTS (SELECT 1 FROM removedFile) OR EXISTS (SELECT 1 FROM orphan), "
        "(SELECT count(*) FROM (SELECT 1 FROM noteSummary WHERE searchRow IS NULL LIMIT ?1))");
    work.bind(1, imported).step();
    return {.removedFiles = work.integer(0) != 0, .notesNotIndexed = work.integer(1)};
  } catch (const std::exception&) {
    return {};
  }
}

void catchUp(sqlite::Connection& connection, const OpenWork& work, IndexUpdate updateIndex) {
  if (work.notesNotIndexed < enoughForABatch) return;
  const bool import = work.notesNotIndexed >= imported;
  const int milliseconds = import ? importMilliseconds : batchMilliseconds;
  try {
    // What is written here can be worked out again: it need not survive a power cut.
    connection.execute("PRAGMA synchronous = NORMAL");
    sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
    writeFacts(connection, milliseconds);
    updateIndex(connection, milliseconds);
    transaction.commit();
  } catch (const std::exception&) {
    // Somebody else is writing, or the disk is full: there will be another time.
  }
}

}  // namespace tavimodel

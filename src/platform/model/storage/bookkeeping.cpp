#include "platform/model/storage/bookkeeping.h"

#include <exception>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

OpenWork openWork(sqlite::Connection& connection) {
  try {
    // A single statement, because every command runs it. Notes without text facts have no index
    // entry either, so they are counted, too.
    sqlite::Query work = connection.query(
        "SELECT EXISTS (SELECT 1 FROM removedFile) OR EXISTS (SELECT 1 FROM orphan), "
        "(SELECT count(*) FROM (SELECT 1 FROM noteSummary WHERE searchRow IS NULL LIMIT ?1)), "
        "(SELECT value FROM counter WHERE name = 'unpurged')");
    work.bind(1, closingBudget.fewestNotes).step();
    return {.removedFiles = work.integer(0) != 0,
            .expiredTexts = work.integer(2) != 0,
            .notesNotIndexed = work.integer(1)};
  } catch (const std::exception&) {
    return {};
  }
}

bool catchUp(sqlite::Connection& connection, IndexUpdate updateIndex, TidyBudget budget) {
  try {
    // This data can be derived again, so it need not survive a power failure. Pages that do not fit
    // in the cache, whose size is in KiB, would be written to the log more than once.
    connection.query("PRAGMA synchronous = NORMAL").run();
    connection.query("PRAGMA cache_size = -8192").run();
    sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
    const bool timeRanOut = updateIndex(connection, budget);
    transaction.commit();
    return timeRanOut;
  } catch (const std::exception&) {
    return false;  // another program is writing, or the disk is full: a later run does it
  }
}

}  // namespace tavimodel

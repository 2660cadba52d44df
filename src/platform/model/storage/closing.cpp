#include "platform/model/storage/closing.h"

#include <sqlite3.h>

#include <chrono>

#include "platform/model/storage/file_store.h"
#include "platform/model/storage/folder_lock.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/write_ahead_log.h"

namespace tavimodel {
namespace {

/// Whether closing may write to this database at all.
bool canWrite(const sqlite::Connection& connection) {
  return !connection.isRefused() && sqlite3_db_readonly(connection.handle(), "main") == 0;
}

}  // namespace

bool tidy(sqlite::Connection& connection, FileStore& files, IndexUpdate updateIndex,
          TidyBudget budget) {
  if (!canWrite(connection)) return false;
  connection.setBusyTimeout(0);
  const OpenWork work = openWork(connection);
  files.sweep(connection, work.removedFiles);
  if (work.notesNotIndexed < budget.fewestNotes && !work.expiredTexts) return false;
  return catchUp(connection, updateIndex, budget);
}

bool tidyOpen(sqlite::Connection& connection, FileStore& files, IndexUpdate updateIndex,
              TidyBudget budget) {
  const bool timeRanOut = tidy(connection, files, updateIndex, budget);
  connection.query("PRAGMA synchronous = FULL").run();
  connection.query("PRAGMA cache_size = -2000").run();  // KiB, SQLite's default
  connection.setBusyTimeout(waitForWriters);
  return timeRanOut;
}

void checkpointOpen(sqlite::Connection& connection) {
  sqlite3_wal_checkpoint_v2(connection.handle(), nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr,
                            nullptr);
  // A connection increments the file change counter when it has read page 1 from the file. Each log
  // needs a counter of its own (see write_ahead_log.h).
  connection.dropCachedPages();
}

void checkpointAndClose(std::unique_ptr<sqlite::Connection> connection,
                        const std::filesystem::path& folder) {
  if (!canWrite(*connection) || logSize(databaseIn(folder)) == 0) return;
  // Without this lock, two processes that close at the same time would each leave the log to the
  // other.
  const FolderLock oneAtATime(folder, std::chrono::milliseconds(100));
  sqlite3_wal_checkpoint_v2(connection->handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr,
                            nullptr);
  connection.reset();
}

}  // namespace tavimodel

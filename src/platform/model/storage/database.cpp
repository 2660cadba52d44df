#include "platform/model/storage/database.h"

#include <sqlite3.h>

#include <chrono>

#include "platform/model/storage/folder_lock.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/write_ahead_log.h"

namespace tavimodel {

Database::Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex)
    : folder_(folder),
      connection_(openDatabase(folder, access)),
      files_(folder / "files"),
      updateIndex_(updateIndex) {
  if (!connection_->isRefused()) repairLocks(*connection_);
}

Database::~Database() {
  const bool canWrite = sqlite3_db_readonly(connection_->handle(), "main") == 0;
  if (!canWrite || connection_->isRefused()) return;
  tidy();
  if (logSize(databaseIn(folder_)) == 0) return;
  // Of two processes that close at once each would leave the log to the other.
  const FolderLock oneAtATime(folder_, std::chrono::milliseconds(100));
  sqlite3_wal_checkpoint_v2(connection_->handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr,
                            nullptr);
  connection_.reset();
}

void Database::tidy() {
  connection_->setBusyTimeout(0);
  const OpenWork work = openWork(*connection_);
  files_.sweep(*connection_, work.removedFiles);
  catchUp(*connection_, work, updateIndex_);
}

}  // namespace tavimodel

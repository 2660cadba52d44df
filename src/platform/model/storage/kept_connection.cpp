#include "platform/model/storage/kept_connection.h"

#include <unistd.h>

#include <chrono>
#include <exception>
#include <stdexcept>
#include <utility>

#include "platform/model/storage/closing.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/schema.h"

namespace tavimodel {
namespace {

/// Limit of cached statements, since each kind of search has SQL of its own.
constexpr std::size_t mostStatements = 200;

/// Pages of the log from which even a server that is never idle writes it back. The next program
/// that opens the database after the server was killed reads the whole log.
constexpr std::int64_t longLog = 3000;
/// Pages that an idle server writes back at once.
constexpr std::int64_t longIdleLog = 500;
/// A slice that has taken longer leaves closing to the next one.
constexpr std::chrono::milliseconds longBeforeClosing(2);

using Clock = std::chrono::steady_clock;

}  // namespace

KeptConnection::~KeptConnection() {
  if (connection_) close();
}

void KeptConnection::close() {
  try {
    ensureCurrent();
    FileStore files(folder_ / "files");
    tidy(*connection_, files, updateIndex_, closingBudget);
    checkpointAndClose(std::move(connection_), folder_);
  } catch (const std::exception&) {
    connection_.reset();  // the next program that opens the database does it
  }
}

std::unique_ptr<sqlite::Connection> KeptConnection::take(const std::filesystem::path& folder,
                                                         const DatabaseIdentity& found) {
  const bool isSame = connection_ && reusable_ && folder == folder_ && isCurrent(found);
  auto kept = std::move(connection_);
  // The permissions of a parent folder may have changed.
  if (!isSame || access(databaseIn(folder).c_str(), R_OK | W_OK) != 0) return nullptr;
  return kept;
}

/// Whether the files are those of the last use, and no other connection has committed since.
bool KeptConnection::isCurrent(const DatabaseIdentity& found) const try {
  return found == identity_ && connection_->dataVersion() == dataVersion_;
} catch (const sqlite::Error&) {
  return false;  // a new connection finds out why
}

void KeptConnection::keep(std::unique_ptr<sqlite::Connection> connection,
                          const std::filesystem::path& folder, const DatabaseIdentity& opened,
                          std::int64_t dataVersion) {
  connection_ = std::move(connection);
  folder_ = folder;
  dataVersion_ = dataVersion;
  identity_ = DatabaseIdentity::of(folder);
  // Of the files, only the log may have changed during the call.
  reusable_ = !connection_->isRefused() && identity_.database == opened.database &&
              identity_.folder == opened.folder && identity_.isSettled() &&
              !connection_->hasRunScripts() && connection_->statementsKept() <= mostStatements;
  if (!isLogLong(longLog)) return;
  if (!reusable_) return close();
  reusable_ = false;
  try {
    FileStore files(folder_ / "files");
    tidyOpen(*connection_, files, updateIndex_, closingBudget);
    writeBack();
  } catch (const std::exception&) {
    // The next call opens the database.
  }
}

/// Whether the log has become longer by this number of pages since it was written back.
bool KeptConnection::isLogLong(std::int64_t limit) {
  const std::int64_t pages = connection_->logPages();
  if (pages < pagesWrittenBack_) pagesWrittenBack_ = 0;  // the log has begun anew
  return pages - pagesWrittenBack_ >= limit;
}

/// Writes the log back between two calls of which the second finds the same connection.
void KeptConnection::writeBack() {
  pagesWrittenBack_ = connection_->logPages();
  checkpointOpen(*connection_);
  DatabaseIdentity::settle(folder_);
  const DatabaseIdentity now = DatabaseIdentity::of(folder_);
  reusable_ = now.isSettled() && now.folder == identity_.folder &&
              now.database.isSameFile(identity_.database);
  identity_ = now;
}

bool KeptConnection::work() {
  if (!connection_) return false;
  const auto start = Clock::now();
  bool reusable = std::exchange(reusable_, false);
  try {
    if (!ensureCurrent()) reusable = false;
    if (isLogLong(longIdleLog)) {
      writeBack();
      reusable_ = reusable_ && reusable;
      return true;
    }
    FileStore files(folder_ / "files");
    const bool more = tidyOpen(*connection_, files, updateIndex_, idleBudget);
    const DatabaseIdentity now = DatabaseIdentity::of(folder_);
    reusable_ = reusable && now.database == identity_.database && now.folder == identity_.folder;
    identity_ = now;
    if (more || Clock::now() - start > longBeforeClosing) return true;
    checkpointAndClose(std::move(connection_), folder_);
  } catch (const std::exception&) {
    connection_.reset();  // the next program that opens the database does it
  }
  return false;
}

void KeptConnection::drop() {
  connection_.reset();
}

/// Reopens the database if its files have changed: this connection's log must not be applied to a
/// file that has replaced the database. Returns false if it did.
bool KeptConnection::ensureCurrent() {
  if (isCurrent(DatabaseIdentity::of(folder_))) return true;
  connection_.reset();
  if (!DatabaseIdentity::of(folder_).database.exists)
    throw std::runtime_error("The database is gone.");
  connection_ = openDatabase(folder_, DatabaseAccess::readWrite);
  if (!connection_->isRefused()) repairLockFlags(*connection_);
  dataVersion_ = connection_->dataVersion();
  return false;
}

}  // namespace tavimodel

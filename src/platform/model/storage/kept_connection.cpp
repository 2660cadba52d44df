#include "platform/model/storage/kept_connection.h"

#include <unistd.h>

#include <exception>
#include <stdexcept>
#include <utility>

#include "platform/model/storage/closing.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/schema.h"

namespace tavimodel {
namespace {

/// Kept prepared: searches differ in their SQL, and there is no end of them.
constexpr std::size_t mostStatements = 200;

}  // namespace

KeptConnection::~KeptConnection() {
  if (!connection_) return;
  try {
    ensureCurrent();
    FileStore files(folder_ / "files");
    tidy(*connection_, files, updateIndex_, closingBudget);
    closeWhole(std::move(connection_), folder_);
  } catch (const std::exception&) {
    // Whoever opens the database next does it.
  }
}

std::unique_ptr<sqlite::Connection> KeptConnection::take(const std::filesystem::path& folder) {
  const bool isSame = connection_ && reusable_ && folder == folder_ && isCurrent();
  auto kept = std::move(connection_);
  // What permissions say of the way there may have changed.
  if (!isSame || access(databaseIn(folder).c_str(), R_OK | W_OK) != 0) return nullptr;
  return kept;
}

/// Whether the files are those of the last use, and nobody else has committed since.
bool KeptConnection::isCurrent() const try {
  return DatabaseIdentity::of(folder_) == identity_ && connection_->dataVersion() == dataVersion_;
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
  // The call itself may have changed the log, and nothing else.
  reusable_ = !connection_->isRefused() && identity_.database == opened.database &&
              identity_.folder == opened.folder && identity_.isSettled() &&
              !connection_->hasRunScripts() && connection_->statementsKept() <= mostStatements;
}

bool KeptConnection::work() {
  if (!connection_) return false;
  reusable_ = false;
  try {
    ensureCurrent();
    FileStore files(folder_ / "files");
    const bool more = tidy(*connection_, files, updateIndex_, idleBudget);
    identity_ = DatabaseIdentity::of(folder_);
    if (more) return true;
    closeWhole(std::move(connection_), folder_);
  } catch (const std::exception&) {
    connection_.reset();  // whoever opens the database next does it
  }
  return false;
}

void KeptConnection::drop() {
  connection_.reset();
}

/// A file that was put in the database's place must not get this connection's log.
void KeptConnection::ensureCurrent() {
  if (isCurrent()) return;
  connection_.reset();
  if (!DatabaseIdentity::of(folder_).database.exists)
    throw std::runtime_error("The database is gone.");
  connection_ = openDatabase(folder_, DatabaseAccess::readWrite);
  if (!connection_->isRefused()) repairLocks(*connection_);
  dataVersion_ = connection_->dataVersion();
}

}  // namespace tavimodel

#include "platform/model/storage/open_database.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <system_error>

#include "platform/model/storage/folder_lock.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/write_ahead_log.h"
#include "platform/system/directories.h"
#include "platform/system/file_descriptor.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;
using Mode = sqlite::Connection::Mode;

constexpr int waitForWriters = 5000;                 // milliseconds
constexpr std::chrono::milliseconds patience{1000};  // with others that open or close the database
constexpr std::size_t databaseHeaderSize = 100;

void makeFolders(const fs::path& folder) {
  if (folder.empty() || access(folder.c_str(), F_OK) == 0) return;
  makeFolders(folder.parent_path());
  platform::system::makePrivateFolder(folder);
}

/// SQLite would create the file with the umask's mode, and its log with the file's.
void makePrivateFile(const fs::path& path) {
  const platform::system::FileDescriptor file(
      open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file) {
    fchmod(file.get(), 0600);  // a umask may take rights from the owner, too
  } else if (errno != EEXIST) {
    throw std::system_error(errno, std::generic_category(), "Could not create " + path.string());
  }
}

/// Whether the file has the schema's pages. It has fewer while another process is creating it.
bool isMade(const fs::path& path) {
  constexpr off_t twoPages = 8192;
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_size > twoPages;
}

void configure(sqlite::Connection& connection) {
  connection.setBusyTimeout(waitForWriters);
  // The log is written back by Database, which knows when.
  sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_autocheckpoint(connection.handle(), 0);
  connection.setBeforeCommit(touchFirstPage);
  // What is deleted is overwritten, whatever this SQLite was built for.
  connection.query("PRAGMA secure_delete = ON").run();
}

/// An `immutable=1` URI: SQLite creates no -wal and no -shm for it.
std::string immutableURI(const fs::path& path) {
  std::string uri = "file:";
  for (const char c : path.string()) {
    if (c == '%' || c == '?' || c == '#') {
      uri += fmt::format("%{:02X}", static_cast<unsigned>(c));
    } else {
      uri += c;
    }
  }
  return uri + "?immutable=1";
}

/// A database that is not to be written, or in a folder that cannot be, has no place for the log's
/// index. Without a log it is read as it stands.
std::unique_ptr<sqlite::Connection> openImmutable(const fs::path& path) {
  if (logSize(path) > 0) return nullptr;
  auto connection = std::make_unique<sqlite::Connection>(immutableURI(path), Mode::readOnly);
  upgradeSchema(*connection);
  return connection;
}

/// SQLite recovers whatever log it finds, and a log of another database, or of another state of
/// this one, would leave a mixture of both. While somebody has the database open, the log is his.
/// Needs the folder's lock: of two processes that look at once, neither would be alone.
bool hasForeignLog(sqlite::Connection& connection, const fs::path& path) {
  const sqlite::SoleUse alone(connection);
  if (!alone) return false;
  return !belongTogether(connection.fileHeader(databaseHeaderSize), originOf(logOf(path)));
}

/// A copy by VACUUM INTO or from a dump has a rollback journal.
void useWriteAheadLog(sqlite::Connection& connection) {
  const std::string header = connection.fileHeader(databaseHeaderSize);
  if (header.empty() || header[18] == 2) return;
  connection.setBusyTimeout(0);
  try {
    connection.query("PRAGMA journal_mode = WAL").run();
  } catch (const sqlite::Error&) {
    // Somebody else is using it, or it cannot be written; it works as it is.
  }
  connection.setBusyTimeout(waitForWriters);
}

std::unique_ptr<sqlite::Connection> refused(std::unique_ptr<sqlite::Connection> connection) {
  connection->refuse(
      "The Tavi database does not belong to the log beside it: put back the tavi.sqlite that "
      "tavi.sqlite-wal was written for, or move tavi.sqlite-wal away.");
  return connection;
}

std::unique_ptr<sqlite::Connection> openFile(const fs::path& path, Mode mode,
                                             std::optional<FolderLock>& lock) {
  try {
    if (mode == Mode::readOnly) {
      if (auto connection = openImmutable(path)) return connection;
    }
    auto connection = std::make_unique<sqlite::Connection>(path, mode);
    if (mode == Mode::readWrite) configure(*connection);
    if (logSize(path) > 0) {
      if (!lock) lock.emplace(path.parent_path(), patience);
      if (hasForeignLog(*connection, path)) return refused(std::move(connection));
    }
    upgradeSchema(*connection);
    if (mode == Mode::readWrite) useWriteAheadLog(*connection);
    return connection;
  } catch (const sqlite::Error&) {
    if (access(path.parent_path().c_str(), W_OK) == 0) throw;
    if (auto connection = openImmutable(path)) return connection;
    throw;
  }
}

}  // namespace

fs::path databaseIn(const fs::path& folder) {
  return folder / "tavi.sqlite";
}

std::unique_ptr<sqlite::Connection> openDatabase(const fs::path& folder, DatabaseAccess access) {
  const fs::path path = databaseIn(folder);
  const bool writes = access == DatabaseAccess::readWrite;
  std::optional<FolderLock> lock;
  if (writes && !isMade(path)) {
    makeFolders(folder / "files");
    lock.emplace(folder);
    std::error_code missing;
    if (fs::file_size(path, missing) == 0 || missing) {
      // The log may be all that is left of the notes: SQLite would remove it.
      if (!originOf(logOf(path)).isEmpty()) {
        return refused(std::make_unique<sqlite::Connection>(":memory:", Mode::readWrite));
      }
    }
    makePrivateFile(path);
  }
  return openFile(path, writes ? Mode::readWrite : Mode::readOnly, lock);
}

}  // namespace tavimodel

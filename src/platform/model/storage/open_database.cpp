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

constexpr std::chrono::milliseconds patience{1000};  // for others that open or close the database
constexpr std::size_t databaseHeaderSize = 100;

void makeFolders(const fs::path& folder) {
  if (folder.empty() || access(folder.c_str(), F_OK) == 0) return;
  makeFolders(folder.parent_path());
  platform::system::makePrivateFolder(folder);
}

/// Creates the file with mode 0600. SQLite would use the umask for it, and gives the log the mode
/// of the database.
void makePrivateFile(const fs::path& path) {
  const platform::system::FileDescriptor file(
      open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  if (file) {
    fchmod(file.get(), 0600);  // the umask may have removed permissions of the owner, too
  } else if (errno != EEXIST) {
    throw std::system_error(errno, std::generic_category(), "Could not create " + path.string());
  }
}

/// Whether the file holds a schema. False while another process is still creating it.
bool hasSchema(const fs::path& path) {
  constexpr off_t twoPages = 8192;
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_size > twoPages;
}

void configure(sqlite::Connection& connection) {
  connection.setBusyTimeout(waitForWriters);
  // Database and KeptConnection decide when to checkpoint.
  sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  connection.countLogPages();
  connection.setBeforeCommit(touchFirstPage);
  // Overwrites deleted content, whatever the build's default is.
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

/// For a database that must not or cannot be written, SQLite cannot create the log's index. Without
/// a log the file can be read as it is. Null if there is a log.
std::unique_ptr<sqlite::Connection> openImmutable(const fs::path& path) {
  if (logSize(path) > 0) return nullptr;
  auto connection = std::make_unique<sqlite::Connection>(immutableURI(path), Mode::readOnly);
  upgradeSchema(*connection);
  return connection;
}

/// Whether the log belongs to another database, or to another state of this one. SQLite would apply
/// it nevertheless and produce a mixture of both. While another process has the database open, the
/// log is valid. Requires the folder's lock: of two processes that check at the same time, neither
/// would get the exclusive lock.
bool hasForeignLog(sqlite::Connection& connection, const fs::path& path) {
  const sqlite::ExclusiveLock alone(connection);
  if (!alone) return false;
  return !belongTogether(connection.fileHeader(databaseHeaderSize), originOf(logOf(path)));
}

/// Switches to write-ahead mode if needed: a copy made by VACUUM INTO or from a dump uses a
/// rollback journal. Byte 18 of the header is 2 in write-ahead mode.
void useWriteAheadLog(sqlite::Connection& connection) {
  const std::string header = connection.fileHeader(databaseHeaderSize);
  if (header.empty() || header[18] == 2) return;
  connection.setBusyTimeout(0);
  try {
    connection.query("PRAGMA journal_mode = WAL").run();
  } catch (const sqlite::Error&) {
    // Another program is using it, or it is read-only; it works in either mode.
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
  if (writes && !hasSchema(path)) {
    makeFolders(folder / "files");
    lock.emplace(folder);
    std::error_code missing;
    if (fs::file_size(path, missing) == 0 || missing) {
      // The log may be all that is left of the notes, and SQLite would delete it.
      if (!originOf(logOf(path)).isEmpty()) {
        return refused(std::make_unique<sqlite::Connection>(":memory:", Mode::readWrite));
      }
    }
    makePrivateFile(path);
  }
  return openFile(path, writes ? Mode::readWrite : Mode::readOnly, lock);
}

}  // namespace tavimodel

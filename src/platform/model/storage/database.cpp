#include "platform/model/storage/database.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <string>
#include <system_error>

#include "platform/model/storage/schema.h"
#include "platform/system/directories.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;

constexpr int waitForWriters = 5000;  // milliseconds

/// A log longer than this, in pages, is written back at the end of a write. The next program to
/// open the database reads the whole log, writing it back takes another sync: in between lies the
/// least of both.
constexpr int longLog = 64;

void makeFolders(const fs::path& folder) {
  if (folder.empty() || access(folder.c_str(), F_OK) == 0) return;
  makeFolders(folder.parent_path());
  platform::system::makePrivateFolder(folder);
}

/// SQLite would create the file with the umask's mode, and its log with the file's.
void makePrivateFile(const fs::path& path) {
  const int file = open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file >= 0) {
    fchmod(file, 0600);  // a umask may take rights from the owner, too
    close(file);
  } else if (errno != EEXIST) {
    throw std::system_error(errno, std::generic_category(), "Could not create " + path.string());
  }
}

/// Whether the file has the schema's pages: fewer has one that another process is just making.
bool isMade(const fs::path& path) {
  constexpr off_t twoPages = 8192;
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && status.st_size > twoPages;
}

/// Held by the process that makes the database. SQLite does not wait for another one that changes
/// what kind of journal there is.
class FolderLock {
 public:
  explicit FolderLock(const fs::path& folder)
      : descriptor_(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (descriptor_ >= 0) flock(descriptor_, LOCK_EX);
  }
  ~FolderLock() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int descriptor_;
};

void configure(sqlite::Connection& connection) {
  connection.setBusyTimeout(waitForWriters);
  // Writing the log back at each close would double the cost of a small write.
  sqlite3_db_config(connection.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  sqlite3_wal_autocheckpoint(connection.handle(), 0);
}

/// The name of a file that SQLite takes to stay as it is: it makes nothing beside it.
std::string unchangingFile(const fs::path& path) {
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
/// index. Where there is no log it is read as it stands.
std::unique_ptr<sqlite::Connection> openUnchanging(const fs::path& path) {
  std::error_code error;
  const auto logSize = fs::file_size(path.string() + "-wal", error);
  if (!error && logSize > 0) return nullptr;
  auto connection = std::make_unique<sqlite::Connection>(unchangingFile(path),
                                                         sqlite::Connection::Mode::readOnly);
  upgradeSchema(*connection);
  return connection;
}

std::unique_ptr<sqlite::Connection> openDatabase(const fs::path& path,
                                                 sqlite::Connection::Mode mode) {
  try {
    if (mode == sqlite::Connection::Mode::readOnly)
      if (auto connection = openUnchanging(path)) return connection;
    auto connection = std::make_unique<sqlite::Connection>(path, mode);
    if (mode == sqlite::Connection::Mode::readWrite) configure(*connection);
    upgradeSchema(*connection);
    return connection;
  } catch (const sqlite::Error&) {
    if (access(path.parent_path().c_str(), W_OK) == 0) throw;
    if (auto connection = openUnchanging(path)) return connection;
    throw;
  }
}

int noteLogLength(void* length, sqlite3*, const char*, int frames) {
  *static_cast<int*>(length) = frames;
  return SQLITE_OK;
}

/// Makes what is missing, and opens the database.
std::unique_ptr<sqlite::Connection> openFolder(const fs::path& folder, Database::Access access) {
  using Mode = sqlite::Connection::Mode;
  const fs::path path = folder / "tavi.sqlite";
  const bool writes = access == Database::Access::readWrite;
  std::optional<FolderLock> making;
  if (writes && !isMade(path)) {
    makeFolders(folder / "files");
    making.emplace(folder);
    makePrivateFile(path);
  }
  return openDatabase(path, writes ? Mode::readWrite : Mode::readOnly);
}

}  // namespace

Database::Database(const fs::path& folder, Access access, IndexUpdate updateIndex)
    : connection_(openFolder(folder, access)), files_(folder / "files"), updateIndex_(updateIndex) {
  sqlite3_wal_hook(connection_->handle(), noteLogLength, &logFrames_);
}

Database::~Database() {
  if (sqlite3_db_readonly(connection_->handle(), "main") != 0) return;
  connection_->setBusyTimeout(0);
  const OpenWork work = openWork(*connection_);
  files_.sweep(*connection_, work.removedFiles);
  catchUp(*connection_, work, updateIndex_);
  if (logFrames_ > longLog) {
    sqlite3_wal_checkpoint_v2(connection_->handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr,
                              nullptr);
  }
}

}  // namespace tavimodel

#include "platform/model/storage/file_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "platform/model/storage/sqlite.h"
#include "platform/system/directories.h"
#include "platform/system/file_descriptor.h"
#include "platform/system/hashing.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;
using platform::system::FileDescriptor;

[[noreturn]] void fail(const fs::path& path, const char* what) {
  throw std::system_error(errno, std::generic_category(), std::string(what) + " " + path.string());
}

void syncFolder(const fs::path& path) {
  const FileDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder || fsync(folder.get()) != 0) fail(path, "Could not write the folder");
}

/// Creates and locks the file. If a sweep removes it between the two steps, it is created again.
FileDescriptor createLocked(const fs::path& path) {
  while (true) {
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    if (!file) fail(path, "Could not create the file");
    // The umask may have removed permissions of the owner, too.
    if (fchmod(file.get(), 0600) != 0) fail(path, "Could not create the file");
    if (flock(file.get(), LOCK_EX) != 0) fail(path, "Could not lock the file");
    struct stat byDescriptor {};
    struct stat byName {};
    if (fstat(file.get(), &byDescriptor) == 0 && stat(path.c_str(), &byName) == 0 &&
        byDescriptor.st_ino == byName.st_ino) {
      return file;
    }
  }
}

/// Locks the file, then renames it. Returns no descriptor if it cannot be moved, for example
/// because it is on another file system or has other hard links.
FileDescriptor moveLocked(const fs::path& source, const fs::path& target) {
  FileDescriptor file(open(source.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || status.st_nlink != 1) return {};
  if (flock(file.get(), LOCK_EX | LOCK_NB) != 0 || fchmod(file.get(), 0600) != 0) return {};
  if (rename(source.c_str(), target.c_str()) != 0) return {};
  return file;
}

/// False for a symbolic link, whatever it points to.
bool isRegularFile(const fs::path& path) {
  std::error_code ignored;
  return fs::symlink_status(path, ignored).type() == fs::file_type::regular;
}

bool hasRow(sqlite::Connection& connection, const std::string& storedName) {
  sqlite::Query row = connection.query("SELECT 1 FROM file WHERE storedName = ?1");
  return row.bind(1, storedName).step();
}

std::int64_t sizeOf(int file, const fs::path& path) {
  struct stat status {};
  if (fstat(file, &status) != 0) fail(path, "Could not read the file");
  return status.st_size;
}

/// Copies in the kernel, so that the bytes do not pass through this process.
void copyBytes(const fs::path& source, int target, const fs::path& targetPath) {
  constexpr std::size_t most = std::size_t{1} << 30;
  const FileDescriptor input(open(source.c_str(), O_RDONLY | O_CLOEXEC));
  if (!input) fail(source, "Could not read the file");
  bool withinFileSystem = true;
  bool begun = false;
  while (true) {
    const ssize_t count = withinFileSystem
                              ? copy_file_range(input.get(), nullptr, target, nullptr, most, 0)
                              : sendfile(target, input.get(), nullptr, most);
    if (count == 0) return;
    if (count > 0) {
      begun = true;
    } else if (withinFileSystem && !begun && errno != EINTR) {
      withinFileSystem = false;  // across file systems, or on one without support
    } else if (errno != EINTR) {
      fail(targetPath, "Could not write the file");
    }
  }
}

}  // namespace

FileStore::FileStore(fs::path folder) : folder_(std::move(folder)) {}

FileStore::~FileStore() {
  discardStaged();
}

FileStore::Staged FileStore::stage(const fs::path& source) {
  platform::system::makePrivateFolder(folder_);
  platform::system::makePrivateFolder(folder_ / "staged");
  Staged result;
  result.storedName = platform::system::newUUID();
  const fs::path path = folder_ / "staged" / result.storedName;
  FileDescriptor file = moveLocked(source, path);
  const bool isMoved = static_cast<bool>(file);
  if (!isMoved) file = createLocked(path);
  const int descriptor = file.get();
  staged_.push_back({result.storedName, std::move(file)});
  if (!isMoved) copyBytes(source, descriptor, path);
  result.size = sizeOf(descriptor, path);
  if (fsync(descriptor) != 0) fail(path, "Could not write the file");
  syncFolder(folder_ / "staged");
  syncFolder(folder_);
  return result;
}

void FileStore::publishStaged() {
  for (const OpenFile& file : staged_) {
    // If the rename fails, `locate` finds the file in staged/, and the next sweep moves it.
    std::error_code ignored;
    fs::rename(folder_ / "staged" / file.storedName, folder_ / file.storedName, ignored);
  }
  staged_.clear();
}

void FileStore::discardStaged() {
  for (const OpenFile& file : staged_) {
    unlink((folder_ / "staged" / file.storedName).c_str());
  }
  staged_.clear();
}

std::optional<fs::path> FileStore::locate(std::string_view storedName) const {
  // A stored name from the database is not trusted to stay inside the folder.
  if (storedName.find('/') != std::string_view::npos) return std::nullopt;
  if (storedName.find('\0') != std::string_view::npos) return std::nullopt;
  for (const fs::path& path : {folder_ / storedName, folder_ / "staged" / storedName}) {
    if (isRegularFile(path)) return path;
  }
  return std::nullopt;
}

void FileStore::sweep(sqlite::Connection& connection, bool removedFiles) {
  try {
    sweepStaged(connection);
    if (removedFiles) removeUnwanted(connection);
  } catch (const std::exception&) {
    // A later sweep does it.
  }
}

void FileStore::sweepStaged(sqlite::Connection& connection) {
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / "staged", error)) {
    // Only regular files are ours; links are not followed, and a FIFO does not block.
    const FileDescriptor file(
        open(entry.path().c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    if (flock(file.get(), LOCK_EX | LOCK_NB) != 0) continue;  // a writer still holds it
    const std::string name = entry.path().filename();
    if (hasRow(connection, name)) {
      fs::rename(entry.path(), folder_ / name, error);
    } else {
      fs::remove(entry.path(), error);
    }
  }
}

/// Removes a name from the table once the deletion of its file is synced. Also removes a name that
/// a row uses again, as after a note was replaced or a copy restored; its bytes stay.
void FileStore::removeUnwanted(sqlite::Connection& connection) {
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
  connection.query("DELETE FROM orphan").run();
  connection.syncLog();  // the deleted rows must survive a power failure first
  std::vector<std::string> done;
  {
    sqlite::Query names = connection.query(
        "SELECT storedName, storedName IN (SELECT storedName FROM file WHERE storedName IS NOT "
        "NULL)"
        " FROM removedFile");
    while (names.step()) {
      const bool wanted = names.integer(1) != 0;
      const auto path = wanted ? std::nullopt : locate(names.text(0));
      if (path && unlink(path->c_str()) != 0 && errno != ENOENT) continue;
      done.emplace_back(names.text(0));
    }
  }
  for (const fs::path& folder : {folder_, folder_ / "staged"}) {
    if (access(folder.c_str(), F_OK) == 0) syncFolder(folder);
  }
  for (const std::string& name : done) {
    connection.query("DELETE FROM removedFile WHERE storedName = ?1").bind(1, name).run();
  }
  transaction.commit();
}

}  // namespace tavimodel

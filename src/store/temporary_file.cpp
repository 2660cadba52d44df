#include "store/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "platform/system/directories.h"
#include "platform/system/hashing.h"

namespace tavi {
namespace {

namespace fs = std::filesystem;
using platform::system::FileDescriptor;

constexpr std::string_view prefix = "tavi-attach-";

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category(), "Could not write the temporary file");
}

/// Whether the name is "tavi-attach-" and a UUID in the format of `newUUID`.
bool isNameOfOurs(std::string_view name) {
  if (!name.starts_with(prefix)) return false;
  const std::string_view uuid = name.substr(prefix.size());
  constexpr std::string_view pattern = "hhhhhhhh-hhhh-4hhh-hhhh-hhhhhhhhhhhh";
  constexpr std::string_view digits = "0123456789ABCDEF";
  return std::equal(uuid.begin(), uuid.end(), pattern.begin(), pattern.end(), [&](char c, char p) {
    return p == 'h' ? digits.find(c) != digits.npos : c == p;
  });
}

/// Removes the file and its folder, unless the folder has other entries.
void removeFolder(const fs::path& folder, const fs::path& file) {
  if (!file.empty()) unlink(file.c_str());
  rmdir(folder.c_str());
}

/// Opens and locks the folder (flock(2)). Empty, with errno set, if another process holds the lock
/// or the folder is gone.
FileDescriptor lockFolder(const fs::path& path, int how) {
  FileDescriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  struct stat status {};
  if (!folder || flock(folder.get(), how) != 0 || fstat(folder.get(), &status) != 0) return {};
  if (status.st_nlink > 0) return folder;
  errno = ENOENT;  // removed while waiting for the lock
  return {};
}

/// Finds the file that a killed process left in its folder; `file` stays empty if there is none.
/// False if the folder has other entries: then it is not one of ours.
bool findLeftFile(const fs::path& folder, fs::path& file) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; entry != end && !error;
       entry.increment(error)) {
    const bool isRegular = entry->symlink_status(error).type() == fs::file_type::regular;
    if (!isRegular || !file.empty()) return false;
    file = entry->path();
  }
  return !error;
}

/// Removes the folders of killed processes, which no process holds locked.
void sweep(const fs::path& temporary) {
  std::error_code error;
  for (fs::directory_iterator entry(temporary, error), end; entry != end && !error;
       entry.increment(error)) {
    const fs::path& folder = entry->path();
    struct stat status {};
    const bool ours = isNameOfOurs(folder.filename().string()) &&
                      lstat(folder.c_str(), &status) == 0 && status.st_uid == geteuid();
    if (!ours) continue;
    const FileDescriptor lock = lockFolder(folder, LOCK_EX | LOCK_NB);
    fs::path file;
    if (lock && findLeftFile(folder, file)) removeFolder(folder, file);
  }
}

}  // namespace

TemporaryFile::TemporaryFile(std::string_view bytes, const std::string& filename) {
  const fs::path temporary = platform::system::temporaryDirectory();
  sweep(temporary);
  fs::create_directories(temporary);
  while (!lock_) {  // another process may sweep the new folder before it is locked
    folder_ = temporary / (std::string(prefix) + platform::system::newUUID());
    platform::system::makePrivateFolder(folder_);
    lock_ = lockFolder(folder_, LOCK_EX);
    if (lock_ || errno == ENOENT) continue;
    const int error = errno;
    rmdir(folder_.c_str());
    errno = error;
    fail();
  }
  path_ = folder_ / filename;
  try {
    write(bytes);
  } catch (...) {
    remove();
    throw;
  }
}

TemporaryFile::~TemporaryFile() {
  remove();
}

void TemporaryFile::remove() {
  removeFolder(folder_, path_);
  lock_.reset();
}

void TemporaryFile::write(std::string_view bytes) {
  FileDescriptor file(open(path_.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  if (!file) fail();
  constexpr std::size_t piece = 256 * 1024;  // writing 50 MB in one call takes three times as long
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.get(), bytes.data(), std::min(bytes.size(), piece));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail();
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  if (fchmod(file.get(), 0600) != 0 || !file.close()) fail();
}

}  // namespace tavi

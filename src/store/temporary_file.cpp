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

constexpr std::string_view prefix = "tavi-attach-";

[[noreturn]] void fail() {
  throw std::system_error(errno, std::generic_category(), "Could not write the temporary file");
}

void removeFolder(const fs::path& folder) {
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

/// The folder, locked (flock(2)); -1, and why in errno, when it is another process's or gone.
int lockFolder(const fs::path& folder, int how) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  if (descriptor < 0) return -1;
  struct stat status {};
  int error = 0;
  if (flock(descriptor, how) != 0 || fstat(descriptor, &status) != 0) error = errno;
  if (error == 0 && status.st_nlink == 0) error = ENOENT;  // removed while we waited
  if (error == 0) return descriptor;
  close(descriptor);
  errno = error;
  return -1;
}

/// Removes the folders of programs that were killed: nobody has them locked.
void sweep(const fs::path& temporary) {
  std::error_code error;
  for (fs::directory_iterator entry(temporary, error), end; entry != end && !error;
       entry.increment(error)) {
    const fs::path& folder = entry->path();
    struct stat status {};
    const bool ours = folder.filename().string().starts_with(prefix) &&
                      lstat(folder.c_str(), &status) == 0 && status.st_uid == geteuid();
    const int lock = ours ? lockFolder(folder, LOCK_EX | LOCK_NB) : -1;
    if (lock < 0) continue;
    removeFolder(folder);
    close(lock);
  }
}

}  // namespace

TemporaryFile::TemporaryFile(std::string_view bytes, const std::string& filename) {
  const fs::path temporary = platform::system::temporaryDirectory();
  sweep(temporary);
  fs::create_directories(temporary);
  while (lock_ < 0) {  // another program's sweep may come between
    folder_ = temporary / (std::string(prefix) + platform::system::newUUID());
    platform::system::makePrivateFolder(folder_);
    lock_ = lockFolder(folder_, LOCK_EX);
    if (lock_ >= 0 || errno == ENOENT) continue;
    const int error = errno;
    removeFolder(folder_);
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

void TemporaryFile::remove() const {
  removeFolder(folder_);
  close(lock_);
}

void TemporaryFile::write(std::string_view bytes) {
  const int file = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (file < 0) fail();
  constexpr std::size_t piece = 256 * 1024;  // one write of 50 MB takes three times as long
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), std::min(bytes.size(), piece));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      const int error = errno;
      close(file);
      errno = error;
      fail();
    }
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  if (fchmod(file, 0600) != 0 || close(file) != 0) fail();
}

}  // namespace tavi

#include "vault/files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "platform/system/file_descriptor.h"

namespace tavi::vault {
namespace {

using platform::system::FileDescriptor;

[[noreturn]] void fail(const char* what) {
  throw FileFault(fmt::format("{} ({})", what, std::strerror(errno)));
}

FileDescriptor opened(const std::filesystem::path& path, int flags, mode_t mode = 0) {
  return FileDescriptor(::open(path.c_str(), flags | O_CLOEXEC, mode));
}

double seconds(const statx_timestamp& time) {
  return static_cast<double>(time.tv_sec) + time.tv_nsec / 1e9;
}

}  // namespace

std::string contentsOf(const std::filesystem::path& path, std::uint64_t limit) {
  const FileDescriptor file = opened(path, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
  if (!file) fail("it cannot be read");
  struct stat status {};
  if (::fstat(file.get(), &status) != 0) fail("it cannot be read");
  if (!S_ISREG(status.st_mode)) throw FileFault("it is no regular file");
  if (static_cast<std::uint64_t>(status.st_size) > limit) {
    throw FileFault(fmt::format("it is larger than {} MB", limit >> 20));
  }
  std::string bytes(static_cast<std::size_t>(status.st_size) + 1, '\0');
  std::size_t size = 0;
  while (true) {
    const auto count =
        platform::system::readSome(file.get(), bytes.data() + size, bytes.size() - size);
    if (count < 0) fail("it cannot be read");
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size > limit) throw FileFault(fmt::format("it is larger than {} MB", limit >> 20));
    if (size == bytes.size()) bytes.resize(size * 2);
  }
  bytes.resize(size);
  return bytes;
}

FileDates datesOf(const std::filesystem::path& path) {
  struct statx status {};
  if (::statx(AT_FDCWD, path.c_str(), AT_SYMLINK_NOFOLLOW, STATX_MTIME | STATX_BTIME, &status) != 0)
    fail("its dates cannot be read");
  FileDates dates{.modified = seconds(status.stx_mtime)};
  if ((status.stx_mask & STATX_BTIME) != 0) dates.born = seconds(status.stx_btime);
  return dates;
}

void writeFile(const std::filesystem::path& path, std::string_view bytes) {
  FileDescriptor file = opened(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, 0666);
  if (!file) fail("it cannot be written");
  while (!bytes.empty()) {
    const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail("it cannot be written");
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  if (!file.close()) fail("it cannot be written");
}

void syncFolder(const std::filesystem::path& folder) {
  const FileDescriptor descriptor = opened(folder, O_RDONLY | O_DIRECTORY);
  if (!descriptor || ::syncfs(descriptor.get()) != 0) fail("it cannot be written");
}

}  // namespace tavi::vault

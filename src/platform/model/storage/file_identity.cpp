#include "platform/model/storage/file_identity.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>

#include "platform/model/storage/open_database.h"
#include "platform/model/storage/write_ahead_log.h"

namespace tavimodel {
namespace {

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileIdentity FileIdentity::of(const std::filesystem::path& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return {};
  return {.exists = true,
          .device = status.st_dev,
          .inode = status.st_ino,
          .mode = status.st_mode,
          .size = status.st_size,
          .modified = nanoseconds(status.st_mtim),
          .changed = nanoseconds(status.st_ctim)};
}

bool FileIdentity::isSameFile(const FileIdentity& other) const {
  return exists && other.exists && device == other.device && inode == other.inode &&
         mode == other.mode;
}

std::optional<FileIdentity> withUniqueTime(const std::filesystem::path& path) {
  timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {}};
  clock_gettime(CLOCK_REALTIME, &times[1]);
  if (utimensat(AT_FDCWD, path.c_str(), times, 0) != 0) return std::nullopt;
  const FileIdentity identity = FileIdentity::of(path);
  if (identity.modified != nanoseconds(times[1])) return std::nullopt;
  return identity;
}

DatabaseIdentity DatabaseIdentity::of(const std::filesystem::path& folder) {
  const std::filesystem::path database = databaseIn(folder);
  DatabaseIdentity identity{.folder = FileIdentity::of(folder),
                            .database = FileIdentity::of(database),
                            .log = FileIdentity::of(logOf(database)),
                            .logIndex = FileIdentity::of(database.string() + "-shm")};
  // The file is mapped into memory, and every read changes its times.
  identity.logIndex.modified = identity.logIndex.changed = 0;
  return identity;
}

bool DatabaseIdentity::isSettled() const {
  constexpr std::chrono::milliseconds ticks{
      20};  // the clock of a file system may have ticks of 4 or 10 ms
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return now - std::chrono::nanoseconds(database.changed) > ticks;
}

}  // namespace tavimodel

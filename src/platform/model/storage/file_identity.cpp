#include "platform/model/storage/file_identity.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <string>

#include "platform/model/storage/open_database.h"

namespace tavimodel {
namespace {

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

FileIdentity FileIdentity::of(const char* path) {
  struct stat status {};
  if (stat(path, &status) != 0) return {};
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
  const FileIdentity identity = FileIdentity::of(path.c_str());
  if (identity.modified != nanoseconds(times[1])) return std::nullopt;
  return identity;
}

DatabaseIdentity DatabaseIdentity::of(const std::filesystem::path& folder) {
  // Strings, since a path is taken apart whenever one is made.
  const std::string database = databaseIn(folder).string();
  DatabaseIdentity identity{.folder = FileIdentity::of(folder.c_str()),
                            .database = FileIdentity::of(database.c_str()),
                            .log = FileIdentity::of((database + "-wal").c_str()),
                            .logIndex = FileIdentity::of((database + "-shm").c_str())};
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

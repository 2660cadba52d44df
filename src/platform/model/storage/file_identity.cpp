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
  // A write sets both times to the present. A file system without nanoseconds may round them.
  constexpr std::int64_t microsecond = 1000;
  if (database.modified != database.changed && database.modified % microsecond != 0) return true;
  constexpr std::chrono::milliseconds ticks{
      20};  // the clock of a file system may have ticks of 4 or 10 ms
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return now - std::chrono::nanoseconds(database.changed) > ticks;
}

void DatabaseIdentity::settle(const std::filesystem::path& folder) {
  timespec times[2] = {{.tv_sec = 0, .tv_nsec = UTIME_OMIT}, {}};
  clock_gettime(CLOCK_REALTIME, &times[1]);
  utimensat(AT_FDCWD, databaseIn(folder).c_str(), times, 0);
}

}  // namespace tavimodel

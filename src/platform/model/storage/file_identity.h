#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>

namespace tavimodel {

/// A file's state according to stat(2). Equal values mean the same file with the same bytes, unless
/// it was written twice within one tick of the file system's clock.
struct FileIdentity {
  bool exists = false;
  dev_t device = 0;
  ino_t inode = 0;
  mode_t mode = 0;
  std::int64_t size = 0;      ///< bytes
  std::int64_t modified = 0;  ///< st_mtime, in nanoseconds since 1970-01-01 UTC
  std::int64_t changed = 0;   ///< st_ctime, in the same unit

  /// `exists` is false if stat(2) fails.
  static FileIdentity of(const char* path);
  bool operator==(const FileIdentity&) const = default;
  /// Whether both are of one file, whatever was written to it.
  bool isSameFile(const FileIdentity& other) const;
};

/// The state of a database's folder and files, as a program that opens it now would find them.
struct DatabaseIdentity {
  FileIdentity folder, database, log, logIndex;

  static DatabaseIdentity of(const std::filesystem::path& folder);
  bool operator==(const DatabaseIdentity&) const = default;
  /// Whether another change of the database file would show in its times: the last one is old, or
  /// its time differs from that of the last change of its attributes, as `settle` makes it.
  bool isSettled() const;
  /// Gives the database file the present time in nanoseconds. A write takes its time from a clock
  /// that ticks every few milliseconds, so any later one changes it. Does nothing if the file is
  /// not the user's.
  static void settle(const std::filesystem::path& folder);
};

}  // namespace tavimodel

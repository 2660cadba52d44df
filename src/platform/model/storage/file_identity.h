#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>

namespace tavimodel {

/// What stat(2) tells of a file. Two that are equal are the same file, with the same bytes unless
/// they were replaced within one tick of the file system's clock.
struct FileIdentity {
  bool exists = false;
  dev_t device = 0;
  ino_t inode = 0;
  mode_t mode = 0;
  std::int64_t size = 0;      ///< bytes
  std::int64_t modified = 0;  ///< nanoseconds since 1970-01-01 UTC
  std::int64_t changed = 0;

  static FileIdentity of(const std::filesystem::path& path);
  bool operator==(const FileIdentity&) const = default;
};

/// A database's files: what a program that opens it anew would find.
struct DatabaseIdentity {
  FileIdentity folder, database, log, logIndex;

  static DatabaseIdentity of(const std::filesystem::path& folder);
  bool operator==(const DatabaseIdentity&) const = default;
  /// Whether the database file has been left alone long enough for a change to show.
  bool isSettled() const;
};

}  // namespace tavimodel

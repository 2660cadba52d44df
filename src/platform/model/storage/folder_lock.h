#pragma once

#include <chrono>
#include <filesystem>

#include "platform/system/file_descriptor.h"

namespace tavimodel {

/// An exclusive flock(2) on a folder, for steps that processes of this program take one at a time
/// and that SQLite's own locks do not order: creating the database, checking it against the log
/// that lies beside it, writing the log back on closing.
class FolderLock {
 public:
  /// Waits until the lock is free, or for `patience` if that is shorter. A folder that cannot be
  /// opened is not locked; that is no error.
  explicit FolderLock(const std::filesystem::path& folder,
                      std::chrono::milliseconds patience = std::chrono::milliseconds::max());

 private:
  platform::system::FileDescriptor descriptor_;
};

}  // namespace tavimodel

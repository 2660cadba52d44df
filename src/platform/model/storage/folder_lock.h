#pragma once

#include <chrono>
#include <filesystem>

#include "platform/system/file_descriptor.h"

namespace tavimodel {

/// An exclusive flock(2) on a folder. It serializes the steps of this program's processes that
/// SQLite's own locks do not: creating the database, comparing it with the log beside it, and
/// checkpointing on closing.
class FolderLock {
 public:
  /// Waits until the lock is free, but no longer than `patience`, and then goes on without the
  /// lock. A folder that cannot be opened is not locked; that is no error.
  explicit FolderLock(const std::filesystem::path& folder,
                      std::chrono::milliseconds patience = std::chrono::milliseconds::max());

 private:
  platform::system::FileDescriptor descriptor_;
};

}  // namespace tavimodel

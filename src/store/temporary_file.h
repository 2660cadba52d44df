#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/system/file_descriptor.h"

namespace tavi {

/// A temporary file with a given name, in a private folder of its own; the destructor removes both.
/// The constructor also removes the folders that killed processes left behind.
class TemporaryFile {
 public:
  /// `filename` must not contain a folder. Throws std::system_error.
  TemporaryFile(std::string_view bytes, const std::string& filename);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::filesystem::path& path() const { return path_; }

 private:
  void write(std::string_view bytes);
  void remove();

  std::filesystem::path folder_;
  std::filesystem::path path_;
  platform::system::FileDescriptor lock_;  ///< holds flock(2) on the folder while it is in use
};

}  // namespace tavi

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/system/file_descriptor.h"

namespace tavi {

/// A file under a name of its own, in a private folder among the system's temporary ones; both go
/// with the object. What a program left there that was killed goes with the next file.
class TemporaryFile {
 public:
  /// `filename` must be the name of a file, without a folder. Throws std::system_error.
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
  platform::system::FileDescriptor lock_;  ///< on the folder (flock(2)), as long as it is in use
};

}  // namespace tavi

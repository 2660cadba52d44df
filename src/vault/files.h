#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Reads and writes files of the user safely.
namespace tavi::vault {

/// A file cannot be read or written. what() completes a message that starts with the file's name:
/// "it cannot be read (Permission denied)".
class FileFault : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Reads a regular file. Does not follow a symbolic link and does not block on a FIFO or a device.
/// Throws FileFault, also if the file has more than `limit` bytes.
std::string contentsOf(const std::filesystem::path& path, std::uint64_t limit);

/// The dates of a file, in seconds since 1970-01-01 UTC.
struct FileDates {
  double modified = 0;
  std::optional<double> born;  ///< absent if the file system does not record it
};
/// Throws FileFault.
FileDates datesOf(const std::filesystem::path& path);

/// Creates or overwrites a file, with mode 0666 less the umask. The bytes are on disk after the
/// next `syncFolder`. Throws FileFault.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// Waits until all writes to the file system of `folder` are on disk (syncfs(2)). Throws FileFault.
void syncFolder(const std::filesystem::path& folder);

}  // namespace tavi::vault

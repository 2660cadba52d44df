#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

/// Files of the user's own, read without harm and written without a moment in which half of one
/// stands under its name.
namespace tavi::vault {

/// Why one file cannot be taken or written; what() follows the file's name and a colon.
class FileFault : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The bytes of a regular file. Follows no symbolic link and never waits (a FIFO, a device). Throws
/// FileFault, also for a file of more than `limit` bytes.
std::string contentsOf(const std::filesystem::path& path, std::uint64_t limit);

/// Seconds since 1970-01-01 UTC. Throws FileFault.
struct FileDates {
  double modified = 0;
  std::optional<double> born;  ///< absent where the file system does not know
};
FileDates datesOf(const std::filesystem::path& path);

/// Writes a new file for its owner and, as the umask allows, others; what stood there is written
/// over. The bytes are on the disk after the next `syncFolder`. Throws FileFault.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

/// Waits until everything written to the file system of `folder` is on the disk.
void syncFolder(const std::filesystem::path& folder);

}  // namespace tavi::vault

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/file_descriptor.h"

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// The folder with the attachments' bytes. A file is first written to `staged/`, locked by its
/// writer (flock(2)), and moved to the folder itself after the row that names it is saved:
///
///   - A writer that dies leaves a staged file without a lock. The next program that opens the
///     database moves it to the folder if it has a row, and removes it otherwise.
///   - Deleting a row, by any program, puts the name of its file into the table `removedFile`; the
///     file is removed when that is on disk.
///
/// So each row that can be read has its bytes, and bytes without a row are removed eventually.
class FileStore {
 public:
  explicit FileStore(std::filesystem::path folder);
  ~FileStore();
  FileStore(const FileStore&) = delete;
  FileStore& operator=(const FileStore&) = delete;

  /// A file in `staged/`: the name to store in its row, and its size.
  struct Staged {
    std::string storedName;
    std::int64_t size = 0;  ///< bytes
  };
  /// Moves a file to `staged/`, or copies it if it cannot be moved. The bytes are on disk when this
  /// returns. Throws std::system_error.
  Staged stage(const std::filesystem::path& source);
  /// Moves the staged files to the folder. Call it after their rows are saved.
  void publishStaged();
  /// Removes the staged files, whose rows will not be saved.
  void discardStaged();

  /// The path of the file's bytes; absent if they are missing.
  std::optional<std::filesystem::path> locate(std::string_view storedName) const;

  /// Cleans up after dead writers, and after deleted rows if `removedFiles` says that the table of
  /// that name has rows. Takes the write lock only if needed, and gives up at once if it is not
  /// free. Never throws, and touches regular files only.
  void sweep(sqlite::Connection& connection, bool removedFiles);

 private:
  void sweepStaged(sqlite::Connection& connection);
  void removeUnwanted(sqlite::Connection& connection);

  /// A staged file of this process.
  struct OpenFile {
    std::string storedName;
    platform::system::FileDescriptor descriptor;  ///< holds the lock (flock(2))
  };
  std::filesystem::path folder_;
  std::vector<OpenFile> staged_;
};

}  // namespace tavimodel

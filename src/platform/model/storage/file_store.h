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

/// The folder with the attachments' bytes. A file is written to `staged/` first, locked
/// (flock(2)) by its writer, and moves up when the row that names it is saved:
///
///   - A writer that dies leaves a staged file that nobody holds. With a row it is moved up,
///   without
///     one it is removed, by the next program that opens the database.
///   - A row that is deleted, by anybody, puts its file's name into the table `removedFile`; the
///     file goes when that is on the disk.
///
/// So a row that can be read always has its bytes, and bytes without a row do not stay.
class FileStore {
 public:
  explicit FileStore(std::filesystem::path folder);
  ~FileStore();
  FileStore(const FileStore&) = delete;
  FileStore& operator=(const FileStore&) = delete;

  struct Staged {
    std::string storedName;
    std::int64_t size = 0;  ///< bytes
  };
  /// Moves a file in, so that a large one is not written twice, or copies it where it cannot be
  /// moved; the bytes are on the disk when this returns. Throws std::system_error.
  Staged stage(const std::filesystem::path& source);
  /// Moves up what was staged: its rows are saved.
  void publishStaged();
  /// Removes what was staged: its rows are not to be saved.
  void discardStaged();

  /// Where the bytes lie, or nothing when they are not there.
  std::optional<std::filesystem::path> locate(std::string_view storedName) const;

  /// Clears up after writers that died and rows that are gone. Takes the write lock only when there
  /// is something to do, and gives up at once where it is not free. `removedFiles`: whether there
  /// are rows in the table of that name. Never throws, and touches regular files only.
  void sweep(sqlite::Connection& connection, bool removedFiles);

 private:
  void sweepStaged(sqlite::Connection& connection);
  void removeUnwanted(sqlite::Connection& connection);

  struct OpenFile {
    std::string storedName;
    platform::system::FileDescriptor descriptor;  ///< holds the lock (flock(2))
  };
  std::filesystem::path folder_;
  std::vector<OpenFile> staged_;
};

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

/// `tavi.sqlite-wal`, beside `tavi.sqlite`.
std::filesystem::path logOf(const std::filesystem::path& database);

/// Bytes of the log beside the database; 0 where there is none.
std::uintmax_t logSize(const std::filesystem::path& database);

/// What a log tells of the database that it was written for.
/// Format: https://www.sqlite.org/walformat.html
struct LogOrigin {
  std::uint32_t pageSize = 0;  ///< bytes
  /// The file change counter in each version of the first page, oldest first.
  std::vector<std::uint32_t> changeCounters;
  /// Pages of the database after the last commit; 0: the log holds no commit.
  std::uint32_t databasePages = 0;

  bool isEmpty() const { return databasePages == 0; }
};

/// Reads a log as SQLite's recovery does: frames count up to the last valid commit.
/// Throws std::system_error when the file cannot be read.
LogOrigin originOf(const std::filesystem::path& log);

/// Whether a database whose first 100 bytes are `header`
/// (https://www.sqlite.org/fileformat.html) can be the one that the log was written for.
///
/// A connection's first commit that changes page 1 raises the file change counter there by one, and
/// every commit of this program changes page 1. So the database has the counter from before the
/// log's first commit, or, where the log is partly written back, one from the log.
bool belongTogether(std::string_view header, const LogOrigin& log);

}  // namespace tavimodel

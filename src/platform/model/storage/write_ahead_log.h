#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

/// The path of the write-ahead log: `tavi.sqlite-wal` beside `tavi.sqlite`.
std::filesystem::path logOf(const std::filesystem::path& database);

/// The size of the database's log in bytes; 0 if there is none.
std::uintmax_t logSize(const std::filesystem::path& database);

/// What a write-ahead log says about the database that it was written for. Format:
/// https://www.sqlite.org/walformat.html
struct LogOrigin {
  std::uint32_t pageSize = 0;  ///< bytes
  /// The file change counter in each version of page 1, oldest first.
  std::vector<std::uint32_t> changeCounters;
  /// The database's size in pages after the last commit; 0: the log has no commit.
  std::uint32_t databasePages = 0;

  bool isEmpty() const { return databasePages == 0; }
};

/// Reads a log as SQLite's recovery does, up to the last valid commit. Throws std::system_error
/// when the file cannot be read.
LogOrigin originOf(const std::filesystem::path& log);

/// Whether the log can have been written for a database whose first 100 bytes are `header`
/// (https://www.sqlite.org/fileformat.html).
///
/// A connection's first commit that changes page 1 increments the file change counter there, and
/// every commit of this program changes page 1. So the database has the counter from before the
/// log's first commit or, if the log is partly checkpointed, one from the log.
bool belongTogether(std::string_view header, const LogOrigin& log);

}  // namespace tavimodel

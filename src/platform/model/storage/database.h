#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/kept_connection.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The application's open database: `tavi.sqlite` and `files/` in one folder.
class Database {
 public:
  using Access = DatabaseAccess;

  /// Opens the database in the folder, with the errors of openDatabase. A server passes `kept`,
  /// whose connection is used if it is current; the destructor returns the connection to it.
  Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex,
           KeptConnection* kept = nullptr);
  /// Returns the connection to `kept`; without it, does maintenance (see bookkeeping.h),
  /// checkpoints the log, and closes the database.
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite::Connection& connection() { return *connection_; }
  FileStore& files() { return files_; }

 private:
  std::filesystem::path folder_;
  KeptConnection* kept_;
  DatabaseIdentity opened_;       ///< before opening; only for `kept_`, as is the next
  std::int64_t dataVersion_ = 0;  ///< after opening
  std::unique_ptr<sqlite::Connection> connection_;
  FileStore files_;
  IndexUpdate updateIndex_;
};

}  // namespace tavimodel

#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/kept_connection.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The application's database, open: `tavi.sqlite` and `files/` in one folder.
class Database {
 public:
  using Access = DatabaseAccess;

  /// Opens the database in the folder: see openDatabase. `kept`, of a server, lends its connection
  /// and gets it back.
  Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex,
           KeptConnection* kept = nullptr);
  /// Uses the occasion to keep the database tidy (see bookkeeping.h), writes the log back where no
  /// other connection is reading it, which leaves it empty, and closes the database.
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite::Connection& connection() { return *connection_; }
  FileStore& files() { return files_; }

 private:
  std::filesystem::path folder_;
  KeptConnection* kept_;
  DatabaseIdentity opened_;       ///< for `kept_` only, like the next
  std::int64_t dataVersion_ = 0;  ///< after opening
  std::unique_ptr<sqlite::Connection> connection_;
  FileStore files_;
  IndexUpdate updateIndex_;
};

}  // namespace tavimodel

#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/file_store.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The application's database, open: `tavi.sqlite` and `files/` in one folder.
class Database {
 public:
  /// With `readOnly` the database must be there already: nothing is made, written or tidied up, and
  /// nobody waited for.
  enum class Access { readWrite, readOnly };

  /// With `readWrite` the folder and what belongs into it come into being, private to the user,
  /// where they are missing. Throws sqlite::Error, std::system_error or std::runtime_error; a
  /// database that cannot be opened is left as it was.
  Database(const std::filesystem::path& folder, Access access, IndexUpdate updateIndex);
  /// Closes the database, and uses the occasion to keep it tidy (see bookkeeping.h).
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  sqlite::Connection& connection() { return *connection_; }
  FileStore& files() { return files_; }

 private:
  std::unique_ptr<sqlite::Connection> connection_;
  FileStore files_;
  IndexUpdate updateIndex_;
  int logFrames_ = 0;  ///< length of the write-ahead log after this connection's last commit
};

}  // namespace tavimodel

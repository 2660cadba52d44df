#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/model/file_store.h"
#include "platform/model/managed_object_context.h"
#include "platform/model/sqlite.h"

namespace tavimodel {

/// The application's database, opened for a program beside it: `tavi.sqlite` and `files/` in the
/// application's data folder, which come into being, private to the user, with the first open.
class KVCoreDataStackForExtensions {
 public:
  /// With `readOnly` the database must be there already: nothing is made, written or tidied up, and
  /// nobody waited for.
  enum class Access { readWrite, readOnly };

  /// Null, and a sentence in `error`, when the database cannot be had; it is left as it was.
  static std::unique_ptr<KVCoreDataStackForExtensions> initStackOutputError(
      std::string& error, Access access = Access::readWrite);
  /// Closes the database, and uses the occasion to keep it tidy (see bookkeeping.h).
  ~KVCoreDataStackForExtensions();

  ManagedObjectContext* managedObjectContext() { return &context_; }
  sqlite::Connection& connection() { return *connection_; }

 private:
  KVCoreDataStackForExtensions(std::unique_ptr<sqlite::Connection> connection,
                               const std::filesystem::path& folder);

  std::unique_ptr<sqlite::Connection> connection_;
  FileStore files_;
  ManagedObjectContext context_;
  int logFrames_ = 0;  ///< length of the write-ahead log after this connection's last commit
};

}  // namespace tavimodel

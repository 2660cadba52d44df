#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/model/objects/managed_object_context.h"
#include "platform/model/storage/database.h"

namespace tavimodel {

/// Owns the application's open database and the context of its objects.
class KVCoreDataStackForExtensions {
 public:
  using Access = Database::Access;

  /// Opens the database in `folder`, the application's data folder. If that fails, returns null
  /// with a sentence for the user in `error`, and leaves the database as it was. `kept`: see
  /// Database.
  static std::unique_ptr<KVCoreDataStackForExtensions> initStackOutputError(
      const std::filesystem::path& folder, std::string& error, Access access = Access::readWrite,
      KeptConnection* kept = nullptr);
  ~KVCoreDataStackForExtensions();

  ManagedObjectContext* managedObjectContext() { return &context_; }
  sqlite::Connection& connection() { return database_.connection(); }

 private:
  KVCoreDataStackForExtensions(const std::filesystem::path& folder, Access access,
                               KeptConnection* kept);

  Database database_;
  ManagedObjectContext context_;
};

}  // namespace tavimodel

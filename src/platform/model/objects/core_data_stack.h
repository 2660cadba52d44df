#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/model/objects/managed_object_context.h"
#include "platform/model/storage/database.h"

namespace tavimodel {

/// The application's database, opened for a program beside it, and the context of its objects.
class KVCoreDataStackForExtensions {
 public:
  using Access = Database::Access;

  /// Opens the database in `folder`, the application's data folder. Null, and a sentence in
  /// `error`, when it cannot be had; it is left as it was. `kept`: see Database.
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

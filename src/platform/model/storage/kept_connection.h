#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/file_identity.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// A server's connection between two calls. It is handed out again only where opening the database
/// would find the very same files as at the last use; whoever calls cannot tell it from a new one.
///
/// While no call comes, `work` does what closing does otherwise: it clears up, brings the search
/// index up to date and writes the log back, a slice at a time, and lets go of the database.
class KeptConnection {
 public:
  explicit KeptConnection(IndexUpdate updateIndex) : updateIndex_(updateIndex) {}
  /// Writes the log back.
  ~KeptConnection();
  KeptConnection(const KeptConnection&) = delete;
  KeptConnection& operator=(const KeptConnection&) = delete;

  /// The connection to the database in that folder, or null: open it anew.
  std::unique_ptr<sqlite::Connection> take(const std::filesystem::path& folder);
  /// Takes a connection back. `opened`: the files as they were before it was opened or taken;
  /// `dataVersion`: the connection's right after that.
  void keep(std::unique_ptr<sqlite::Connection> connection, const std::filesystem::path& folder,
            const DatabaseIdentity& opened, std::int64_t dataVersion);

  /// Does a slice of what is left to do, about 10 ms long. False when nothing is left: then the
  /// database is closed, and its log empty where nobody else uses it. Never throws.
  bool work();
  /// Closes the database as it is.
  void drop();

 private:
  bool isCurrent() const;
  void ensureCurrent();

  std::unique_ptr<sqlite::Connection> connection_;
  std::filesystem::path folder_;
  DatabaseIdentity identity_;
  /// Shows a commit of somebody else's that came between a call's answer and `identity_`.
  std::int64_t dataVersion_ = 0;
  bool reusable_ = false;  ///< false: `work` has begun, or its settings are not those of a new one
  IndexUpdate updateIndex_;
};

}  // namespace tavimodel

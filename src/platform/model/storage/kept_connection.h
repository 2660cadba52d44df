#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/file_identity.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Keeps a server's connection between two calls. It is reused only if the database's files are the
/// same as after the last use, so that it behaves like a new connection.
///
/// While the server is idle, `work` does in slices what closing does at once: it cleans up, updates
/// the search index, checkpoints the log, and closes the database.
class KeptConnection {
 public:
  explicit KeptConnection(IndexUpdate updateIndex) : updateIndex_(updateIndex) {}
  /// Does the maintenance of closing, checkpoints the log, and closes the connection.
  ~KeptConnection();
  KeptConnection(const KeptConnection&) = delete;
  KeptConnection& operator=(const KeptConnection&) = delete;

  /// Returns the kept connection to the database in that folder, or null if the caller has to open
  /// a new one. `found`: the files now.
  std::unique_ptr<sqlite::Connection> take(const std::filesystem::path& folder,
                                           const DatabaseIdentity& found);
  /// Connection::dataVersion of the connection that `take` returned.
  std::int64_t dataVersion() const { return dataVersion_; }
  /// Keeps a connection after a call. `opened`: the files before it was opened or taken;
  /// `dataVersion`: Connection::dataVersion right after that.
  void keep(std::unique_ptr<sqlite::Connection> connection, const std::filesystem::path& folder,
            const DatabaseIdentity& opened, std::int64_t dataVersion);

  /// Does a slice of maintenance, of about 10 ms, or longer if a stream of writes has left a long
  /// log. The connection can be taken after each of them. Returns false when no work is left: the
  /// database is then closed, and its log empty unless another program uses it. Never throws.
  bool work();
  /// Closes the connection without maintenance.
  void drop();

 private:
  bool isCurrent(const DatabaseIdentity& found) const;
  bool isLogLong(std::int64_t limit);
  void writeBack();
  void close();
  bool ensureCurrent();

  std::unique_ptr<sqlite::Connection> connection_;
  std::filesystem::path folder_;
  DatabaseIdentity identity_;
  /// Reveals a commit by another connection between a call's answer and `identity_`.
  std::int64_t dataVersion_ = 0;
  std::int64_t pagesWrittenBack_ = 0;  ///< pages in the log when it was last written back
  bool reusable_ = false;              ///< false: the connection may differ from a new one
  IndexUpdate updateIndex_;
};

}  // namespace tavimodel

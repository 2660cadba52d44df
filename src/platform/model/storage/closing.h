#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

class FileStore;

/// Maintenance on closing, after the answer has been written: removes files without a row and
/// updates the search index, within the budget and only if the write lock is free. Returns true if
/// time ran out before everything was done. Never throws.
bool tidy(sqlite::Connection& connection, FileStore& files, IndexUpdate updateIndex,
          TidyBudget budget);

/// `tidy` for a connection that stays open, with its settings as they were.
bool tidyOpen(sqlite::Connection& connection, FileStore& files, IndexUpdate updateIndex,
              TidyBudget budget);

/// Checkpoints the log of a connection that stays open, as far as other connections permit. The log
/// keeps its size, and SQLite begins it anew with the next commit; writing to it in place takes
/// half the time of making it longer. Never throws.
void checkpointOpen(sqlite::Connection& connection);

/// Checkpoints and truncates the log, unless another connection is reading it, and closes the
/// database. Call it after `tidy`, which sets the connection's busy timeout to 0.
void checkpointAndClose(std::unique_ptr<sqlite::Connection> connection,
                        const std::filesystem::path& folder);

}  // namespace tavimodel

#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/bookkeeping.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

class FileStore;

/// What closing the database in `folder` is used for, when the answer is out: files without a row
/// are removed and the search index is brought up to date, within the budget and only where the
/// write lock is free. True when time ran out before the work did. Never throws.
bool tidy(sqlite::Connection& connection, FileStore& files, IndexUpdate updateIndex,
          TidyBudget budget);

/// Writes the log back, which leaves it empty unless another connection is reading it, and closes
/// the database. Comes after `tidy`, from which on the connection waits for no lock.
void closeWhole(std::unique_ptr<sqlite::Connection> connection,
                const std::filesystem::path& folder);

}  // namespace tavimodel

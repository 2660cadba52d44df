#pragma once

#include <cstdint>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// What other programs, and this one's quick writes, have left to do.
struct OpenWork {
  bool removedFiles = false;         ///< rows of files are gone, and their bytes are not yet
  std::int64_t notesNotIndexed = 0;  ///< counted up to 64: whether closing is to begin with them
};

/// A short statement; nothing to do where the database cannot be read.
OpenWork openWork(sqlite::Connection& connection);

/// Brings the search index up to date, in a write transaction of the caller's, for at most that
/// long.
using IndexUpdate = void (*)(sqlite::Connection& connection, int milliseconds);

/// How much work there must be before it is begun, and for how long it may go on.
struct TidyBudget {
  std::int64_t fewestNotes;  ///< that are not indexed
  int milliseconds;
};
/// At the end of a command. Single changes are left alone: readers work them out in memory. So a
/// program that writes note after note pays for the index once in a while, in a batch.
constexpr TidyBudget closingBudget{.fewestNotes = 64, .milliseconds = 60};
/// A slice of a server's time between two calls.
constexpr TidyBudget idleBudget{.fewestNotes = 1, .milliseconds = 8};

/// Brings what is kept beside the notes up to date: facts of texts, folded titles, the search
/// index. Only where the write lock is free. True when time ran out before all was done. Never
/// throws.
bool catchUp(sqlite::Connection& connection, IndexUpdate updateIndex, int milliseconds);

}  // namespace tavimodel

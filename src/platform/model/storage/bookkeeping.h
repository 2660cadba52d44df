#pragma once

#include <cstdint>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// What other programs, and this one's quick writes, have left to do.
struct OpenWork {
  bool removedFiles = false;         ///< rows of files are gone, and their bytes are not yet
  bool expiredTexts = false;         ///< texts of deleted or locked notes are in the search index
  std::int64_t notesNotIndexed = 0;  ///< counted up to 64: whether closing is to begin with them
};

/// A short statement; nothing to do where the database cannot be read.
OpenWork openWork(sqlite::Connection& connection);

/// How many notes must be unknown to the search index before they are added, and for how long that
/// may go on.
struct TidyBudget {
  std::int64_t fewestNotes;
  int milliseconds;
};
/// At the end of a command. Single changes are left alone: readers work them out in memory. So a
/// program that writes note after note pays for the index once in a while, in a batch.
constexpr TidyBudget closingBudget{.fewestNotes = 64, .milliseconds = 60};
/// A slice of a server's time between two calls.
constexpr TidyBudget idleBudget{.fewestNotes = 1, .milliseconds = 8};

/// Brings the search index up to date, within the budget and in a write transaction of the
/// caller's.
using IndexUpdate = void (*)(sqlite::Connection& connection, TidyBudget budget);

/// Brings what is kept beside the notes up to date: facts of texts, folded titles, the search
/// index. Only where the write lock is free. True when time ran out before all was done. Never
/// throws.
bool catchUp(sqlite::Connection& connection, IndexUpdate updateIndex, TidyBudget budget);

}  // namespace tavimodel

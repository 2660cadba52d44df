#pragma once

#include <cstdint>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Maintenance that is pending after writes by other programs or by this one.
struct OpenWork {
  bool removedFiles = false;  ///< file rows were deleted, but not yet their bytes
  bool expiredTexts = false;  ///< texts of deleted or locked notes are in the search index
  std::int64_t notesNotIndexed =
      0;  ///< not counted beyond 64, which is enough for closing to index them
};

/// Reads the pending maintenance in one short statement. Reports none if the database cannot be
/// read.
OpenWork openWork(sqlite::Connection& connection);

/// Limits of one round of index maintenance: at least `fewestNotes` unindexed notes are required to
/// start it, and it stops after `milliseconds`. Slices of the index are filled and
/// merged up to `notesInSlice`, because rewriting one takes about 12 µs a note.
struct TidyBudget {
  std::int64_t fewestNotes;
  int milliseconds;
  std::int64_t notesInSlice;
  std::int64_t notesAtOnce = 64;  ///< between two looks at the clock
};
/// For the end of a command. A few unindexed notes are left, since searches read their texts
/// instead; so a program that writes note after note pays for the index only once per batch.
constexpr TidyBudget closingBudget{.fewestNotes = 64, .milliseconds = 45, .notesInSlice = 1024};
/// For one slice of a server's idle time between two calls.
constexpr TidyBudget idleBudget{
    .fewestNotes = 1, .milliseconds = 5, .notesInSlice = 320, .notesAtOnce = 32};

/// Updates the search index within the budget, in the caller's write transaction. Returns true if
/// time ran out before everything was done.
using IndexUpdate = bool (*)(sqlite::Connection& connection, TidyBudget budget);

/// Updates the data derived from notes (text facts, folded titles, search index) if the write lock
/// is free. Returns true if time ran out before everything was done. Leaves the connection with
/// `PRAGMA synchronous = NORMAL` and a larger page cache. Never throws.
bool catchUp(sqlite::Connection& connection, IndexUpdate updateIndex, TidyBudget budget);

}  // namespace tavimodel

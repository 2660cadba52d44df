#pragma once

#include <cstdint>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// What other programs, and this one's quick writes, have left to do.
struct OpenWork {
  bool removedFiles = false;         ///< rows of files are gone, and their bytes are not yet
  std::int64_t notesNotIndexed = 0;  ///< counted up to the number that tells an import
};

/// A short statement; nothing to do where the database cannot be read.
OpenWork openWork(sqlite::Connection& connection);

/// Brings the search index up to date, in a write transaction of the caller's, for at most that
/// long.
using IndexUpdate = void (*)(sqlite::Connection& connection, int milliseconds);

/// Brings what is kept beside the notes up to date: facts of texts, folded titles, the search
/// index. Done when the answer is out, in bounded time, and only where the write lock is free.
/// Never throws.
///
/// Single changes are left alone: readers work them out in memory. So a program that writes note
/// after note pays for the index once in a while, in a batch, and not each time.
void catchUp(sqlite::Connection& connection, const OpenWork& work, IndexUpdate updateIndex);

}  // namespace tavimodel

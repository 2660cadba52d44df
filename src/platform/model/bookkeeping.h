#pragma once

#include <cstdint>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Brings what is kept beside the notes up to date with what other programs, and this one's quick
/// writes, have left to do: facts of texts, folded titles, the search index. Done when the answer
/// is out, in bounded time, and only where the write lock is free. Never throws.
///
/// Single changes are left alone: readers work them out in memory. So a program that writes note
/// after note pays for the index once in a while, in a batch, and not each time.
void catchUp(sqlite::Connection& connection);

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <vector>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Returns the ids of the notes that another note's text links to by title, ascending. Ignores
/// links in locked and permanently deleted notes. Throws sqlite::Error.
std::vector<std::int64_t> linkedNotes(sqlite::Connection& connection);

}  // namespace tavimodel

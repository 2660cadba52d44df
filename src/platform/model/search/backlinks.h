#pragma once

#include <cstdint>
#include <vector>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The notes to which the text of another note links by their titles, without order and perhaps
/// more than once. Links in locked and in permanently deleted notes do not count.
std::vector<std::int64_t> linkedNotes(sqlite::Connection& connection);

}  // namespace tavimodel

#pragma once

#include <string_view>
#include <vector>

#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the removal of the ranges, which are ascending and lie apart. A line that holds nothing
/// else goes as a whole, and with it one of the blank lines that it stood between; of two blanks
/// around a range inside a line one goes.
Operations plannedRemoval(std::string_view text, const std::vector<ByteRange>& ranges);

}  // namespace zephyrdown

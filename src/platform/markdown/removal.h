#pragma once

#include <string_view>
#include <vector>

#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the removal of ranges, which must be ascending and must not overlap. A line that has
/// nothing else is removed completely, with one of the blank lines around it; of two blanks around
/// a range within a line, one is removed.
Operations plannedRemoval(std::string_view text, const std::vector<ByteRange>& ranges);

}  // namespace zephyrdown

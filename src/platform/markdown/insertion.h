#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/operations.h"

/// Plans insertions of whole lines. What is inserted gets lines of its own: one line break apart
/// from the lines around it, and a blank line apart only where Markdown would otherwise read the
/// two sides as one block, or below a title or tag line. Other bytes stay as they are.
namespace zephyrdown {

/// Below the body, above the foot.
Operations plannedAppend(std::string_view text, const Layout& layout, std::string_view inserted);

/// Above the body, below the head.
Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted);

/// As the last line of all, a blank line apart.
Operations plannedLastLine(std::string_view text, const Layout& layout, std::string_view line);

}  // namespace zephyrdown

#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/operations.h"

/// Plans insertions of whole lines. Inserted text is separated from the lines around it by one line
/// break, and by a blank line only where Markdown would otherwise merge blocks, or below a title or
/// tag line. No other bytes change.
namespace zephyrdown {

/// At the end of the body, above the foot.
Operations plannedAppend(std::string_view text, const Layout& layout, std::string_view inserted);

/// At the start of the body, below the head.
Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted);

/// As the last line of the note, after a blank line.
Operations plannedLastLine(std::string_view text, const Layout& layout, std::string_view line);

}  // namespace zephyrdown

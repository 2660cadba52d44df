#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// What the parser makes of one line. Offsets count bytes from the line's begin.
struct LineReading {
  std::optional<BlockKind> kind;  ///< of the innermost block with text on it; absent without text
  std::size_t textBegin = 0;      ///< the first byte that is text and not markup
  unsigned marks = 0;             ///< the set of kinds of text and spans on it
  bool endsInBackslash = false;   ///< which is text, and not the mark of a line break
  std::vector<std::pair<std::size_t, std::string>> names;  ///< of hashtags and linked files
  bool operator==(const LineReading&) const = default;
};

/// One for each line of `text`, blank ones included.
std::vector<LineReading> lineReadings(std::string_view text);

}  // namespace zephyrdown

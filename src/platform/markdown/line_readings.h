#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

/// How the parser reads one line. Offsets are bytes from the line's start.
struct LineReading {
  std::optional<BlockKind>
      kind;  ///< of the innermost block with text on the line; absent if it has no text
  std::size_t textBegin = 0;     ///< the first byte of text, after markup
  unsigned marks = 0;            ///< bits: all TextPiece::marks on the line
  bool endsInBackslash = false;  ///< as text, not as a hard line break
  std::vector<std::pair<std::size_t, std::string>> names;  ///< of hashtags and linked files
  bool operator==(const LineReading&) const = default;
};

/// Returns one reading for each line of `text`, including blank lines.
std::vector<LineReading> lineReadings(std::string_view text);

}  // namespace zephyrdown

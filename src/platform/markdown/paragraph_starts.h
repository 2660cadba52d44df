#pragma once

#include <cstddef>
#include <string_view>

namespace zephyrdown {

/// The offset of the significant byte of the quote or list mark at `at` (the dot of "1."), or npos
/// if there is no mark.
std::size_t containerMark(std::string_view line, std::size_t at);

/// Finds the lines of a body that cannot belong to the paragraph above them, line by line. It never
/// splits what the parser may read as one paragraph.
class ParagraphStarts {
 public:
  /// Whether the next line starts a new block. Call it for each line in order.
  bool isStart(std::string_view line);

 private:
  bool isItem(std::string_view content);
  bool isRow(std::string_view content);

  bool isFresh_ = true;  ///< after a blank line or a heading
  bool inList_ = false;
  bool inNumbers_ = false;  ///< in a list that can continue with any number
  bool inTable_ = false;
  std::size_t lines_ = 0;  ///< of the paragraph so far
};

}  // namespace zephyrdown

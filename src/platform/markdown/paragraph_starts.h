#pragma once

#include <cstddef>
#include <string_view>

namespace zephyrdown {

/// The mark of a quote or of a list's item that is at `at`: its byte without which it would be none
/// ("1." is a mark by its dot), or npos.
std::size_t containerMark(std::string_view line, std::size_t at);

/// Tells, line after line of a body, which lines cannot belong to the paragraph above them. In
/// doubt a line belongs to it: what the parser may take for one paragraph is never cut.
class ParagraphStarts {
 public:
  bool isStart(std::string_view line);

 private:
  bool isItem(std::string_view content);
  bool isRow(std::string_view content);

  bool isFresh_ = true;  ///< behind a blank line or a heading
  bool inList_ = false;
  bool inNumbers_ = false;  ///< in a list that may go on with any number
  bool inTable_ = false;
  std::size_t lines_ = 0;  ///< of the paragraph so far
};

}  // namespace zephyrdown

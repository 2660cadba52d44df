#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zephyrdown {

/// A correction of the parser's input: `replacement`, which is not shorter, replaces `length` bytes
/// at `at`.
struct Mend {
  std::size_t at = 0;
  std::size_t length = 0;
  std::string replacement;
};

/// Returns the corrections that make the parser read the blocks of `input` as CommonMark and GFM
/// specify, ascending; most texts need none. The parser is wrong where
///   code, a heading or HTML stands directly below a table: a row for it,
///   code indented by blanks stands directly below HTML: a paragraph,
///   the line below a quote or item that ends in open code looks like the code's end,
///   a fence or tag in a paragraph is indented by four blanks or more: the begin of code or HTML,
///   the mark of an item without text, and a blank, stand directly below a paragraph: a list,
///   a delimiter row has cells of one or two dashes, or other columns than the row above,
///   an item continues below a blank line, at one offset in 256: the item would end,
///   an item stands directly below a quote in the item above: its task mark is text,
///   HTML begins with <h2>, <textarea> or <!doctype>, or is a "<!--" that ends the text,
///   a paragraph begins with <prefix>, as if that were <pre>.
std::vector<Mend> mendsForParser(std::string_view input);

/// Applies the corrections in place, since the text may be large.
void mend(std::string& text, const std::vector<Mend>& mends);

/// Maps offsets in the corrected text to offsets in the original.
class OffsetMap {
 public:
  explicit OffsetMap(const std::vector<Mend>& mends);
  std::size_t original(std::size_t offset) const;

 private:
  /// From `begin` on, offsets differ by `added`.
  struct Shift {
    std::size_t begin;  // in the mended text
    std::size_t added;  // bytes inserted before it
  };
  std::vector<Shift> shifts_;
};

}  // namespace zephyrdown

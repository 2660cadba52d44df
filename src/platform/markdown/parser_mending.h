#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zephyrdown {

/// A change to what the parser is shown: `replacement` stands for `length` bytes at `at`.
struct Mend {
  std::size_t at = 0;
  std::size_t length = 0;
  std::string replacement;
};

/// The changes after which the parser reads the blocks of `input` as CommonMark and GFM say.
/// Ascending. Most texts need none. The parser is wrong where
///   code, a heading or HTML stands directly below a table: a row for it,
///   code indented by blanks stands directly below HTML: a paragraph,
///   the line below a quote or item that ends in open code looks like the code's end,
///   a fence or tag in a paragraph is indented by four blanks or more: the begin of code or HTML,
///   the mark of an item without text, and a blank, stand directly below a paragraph: a list,
///   a delimiter row has cells of one or two dashes, or other columns than the row above,
///   an item goes on below a blank line, at one offset in 256: the item would end,
///   an item stands directly below a quote in the item above: its task mark is text,
///   HTML begins with <h2>, <textarea> or <!doctype>, or is a "<!--" that ends the text,
///   a paragraph begins with <prefix>, as if that were <pre>.
std::vector<Mend> mendsForParser(std::string_view input);

/// Makes the changes in place, for a text may be large.
void mend(std::string& text, const std::vector<Mend>& mends);

/// Where a byte of the mended text stands in the one that was given.
class OffsetMap {
 public:
  explicit OffsetMap(const std::vector<Mend>& mends);
  std::size_t original(std::size_t offset) const;

 private:
  struct Shift {
    std::size_t begin;  // in the mended text
    std::size_t added;  // bytes before it that the other does not have
  };
  std::vector<Shift> shifts_;
};

}  // namespace zephyrdown

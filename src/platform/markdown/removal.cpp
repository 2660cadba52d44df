#include "platform/markdown/removal.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/markdown/ascii.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

using Ranges = std::vector<ByteRange>;
using RangeIterator = Ranges::const_iterator;

/// Plans removals line by line.
class Remover {
 public:
  explicit Remover(std::string_view text) : text_(text), begin_(textBegin(text)) {}

  Operations plan(const Ranges& ranges) {
    std::optional<ByteRange> whole;  // lines that go, and blank lines between them
    for (auto first = ranges.begin(); first != ranges.end();) {
      const auto [line, last] = lineOf(first, ranges.end());
      const bool goes = coversAll(line, first, last) && !keepsItem(line, *first);
      if (whole && !(goes && skipBlankLines(text_, nextLine(text_, whole->end)) == line.begin)) {
        add(wholeLines(*std::exchange(whole, std::nullopt)), {});
      }
      if (goes) {
        whole = {whole ? whole->begin : line.begin, line.end};
      } else {
        removeInside(line, first, last);
      }
      first = last;
    }
    if (whole) add(wholeLines(*whole), {});
    return std::move(results_);
  }

 private:
  /// The line of range `first`, or the lines that ranges join, and the first range after it.
  std::pair<ByteRange, RangeIterator> lineOf(RangeIterator first, RangeIterator end) const {
    ByteRange line{std::max(lineBegin(text_, first->begin), begin_), lineEnd(text_, first->end)};
    auto last = std::next(first);
    for (; last != end && last->begin <= line.end; ++last) {
      if (last->end > line.end) line.end = lineEnd(text_, last->end);
    }
    return {line, last};
  }

  /// Whether the ranges cover the line, except a list mark. An empty item is useless, and below a
  /// paragraph it could turn that into a heading.
  bool coversAll(ByteRange line, RangeIterator first, RangeIterator last) const {
    std::size_t at = std::min(behindItemMark(line), first->begin);
    for (; first != last; ++first) {
      if (!isBlankText(text_.substr(at, first->begin - at))) return false;
      at = first->end;
    }
    return isBlankText(text_.substr(at, line.end - at));
  }

  std::size_t behindItemMark(ByteRange line) const {
    const std::size_t mark = skipBlanks(text_, line.begin);
    std::size_t at = mark;
    while (at < line.end && isASCIIDigit(byteOf(text_[at]))) ++at;
    const std::string_view marks = at == mark ? "-+*" : ".)";
    if (at + 1 >= line.end || marks.find(text_[at]) == marks.npos || !isBlank(text_[at + 1])) {
      return line.begin;
    }
    return at + 1;
  }

  /// Whether more of a list item follows below its first line.
  bool keepsItem(ByteRange line, ByteRange first) const {
    if (behindItemMark(line) == line.begin) return false;
    const std::size_t below = skipBlankLines(text_, behindLineBreak(text_, line.end));
    return below < text_.size() && skipBlanks(text_, below) - below >= first.begin - line.begin;
  }

  /// Includes the line break above the lines or, for the first line, the one below, so that a
  /// removal undoes exactly an insertion.
  ByteRange wholeLines(ByteRange line) const {
    const std::size_t below = behindLineBreak(text_, line.end);
    if (wouldBecomeCode(below, line.begin)) return {line.begin, skipBlanks(text_, below)};
    if (line.begin <= begin_) {
      const bool goesOn = isBlankLine(below) && skipBlankLines(text_, below) < text_.size();
      return {line.begin, goesOn ? nextLine(text_, below) : below};
    }
    const std::size_t aboveEnd = previousLineEnd(text_, line.begin);
    const std::size_t above = lineBegin(text_, aboveEnd);
    const bool isBlankAbove = above > begin_ && isBlankLine(above);
    const bool isBlankBelow = below == text_.size() || isBlankLine(below);
    return {isBlankAbove && isBlankBelow ? previousLineEnd(text_, above) : aboveEnd, line.end};
  }

  /// Whether the line at `below` continues a paragraph and is indented enough to be code without
  /// it.
  bool wouldBecomeCode(std::size_t below, std::size_t line) const {
    const std::size_t textBegin = skipBlanks(text_, below);
    const std::string_view indentation = text_.substr(below, textBegin - below);
    const bool isDeep = indentation.size() >= 4 || indentation.find('\t') != npos;
    if (!isDeep || isBlankLine(below) || below == text_.size()) return false;
    if (line <= begin_) return true;
    return isBlankLine(lineBegin(text_, previousLineEnd(text_, line)));
  }

  bool isBlankLine(std::size_t begin) const {
    return begin < text_.size() && isBlankText(text_.substr(begin, lineEnd(text_, begin) - begin));
  }

  void removeInside(ByteRange line, RangeIterator first, RangeIterator last) {
    std::size_t open = line.begin;  // before this, the line has only marks and removed text
    for (; first != last; ++first) {
      const bool opensLine = holdsOnlyMarks(open, first->begin);
      removeInside(line, *first, opensLine);
      if (opensLine) open = first->end;
    }
  }

  void removeInside(ByteRange line, ByteRange range, bool opensLine) {
    while (range.begin > line.begin && range.end < line.end && isEmphasis(range)) {
      --range.begin;
      ++range.end;
    }
    const bool hashBehind = range.end < line.end && text_[range.end] == '#';
    const bool blankBefore = range.begin > line.begin && isBlank(text_[range.begin - 1]) &&
                             !endsInAddress(line.begin, range.begin - 1);
    const bool blankBehind = range.end < line.end && isBlank(text_[range.end]);
    if (opensLine && blankBehind) {
      range.end = skipBlanks(text_, range.end);
    } else if (blankBefore && (blankBehind || endsClause(range.end, line.end)) &&
               range.begin - 1 >= removedUpTo_) {
      --range.begin;
    }
    const std::string_view rest = text_.substr(range.end, line.end - range.end);
    add(range, hashBehind || (opensLine && startsBlock(rest)) ? "\\" : "");
  }

  /// Whether the range has only marks of quotes, lists and tasks.
  bool holdsOnlyMarks(std::size_t begin, std::size_t end) const {
    constexpr std::string_view kMarks = " \t>-+*0123456789.)[]xX";
    return text_.substr(begin, end - begin).find_first_not_of(kMarks) == npos;
  }

  /// Whether the word before `end` may be an address, which would absorb the text after it.
  bool endsInAddress(std::size_t begin, std::size_t end) const {
    const std::string_view before = text_.substr(begin, end - begin);
    const std::string_view word = before.substr(before.find_last_of(" \t") + 1);
    return word.find_first_of(":@") != npos || word.find("www.") != npos;
  }

  bool endsClause(std::size_t at, std::size_t end) const {
    return at == end || std::string_view(",.;:!?)]}").find(text_[at]) != npos;
  }

  /// Whether the same delimiters are on both sides, which would leave an empty pair.
  bool isEmphasis(ByteRange range) const {
    const char before = text_[range.begin - 1];
    return before == text_[range.end] && (before == '*' || before == '_' || before == '~');
  }

  /// Whether the rest of a line would start a block or a task if it came first.
  static bool startsBlock(std::string_view rest) {
    const std::size_t run = std::min(rest.find_first_not_of(rest.substr(0, 1)), rest.size());
    const bool isApart = run == rest.size() || isBlank(rest[run]);
    switch (rest.empty() ? ' ' : rest[0]) {
      case '#':
        return isApart;
      case '-':
      case '+':
      case '*':
        return isApart && (run == 1 || run >= 3);
      case '`':
        return run >= 3 && rest.find('`', run) == npos;
      case '~':
        return run >= 3;
      case '[':
        return rest.size() >= 3 && rest[2] == ']' && (rest.size() == 3 || isBlank(rest[3]));
      case '<':
        return rest.size() >= 2 && (rest[1] == '!' || rest[1] == '?');
      default:
        return !rest.empty() && (rest[0] == '>' || rest.find_first_not_of(" \t-=|:") == npos);
    }
  }

  void add(ByteRange range, std::string replacement) {
    range.begin = std::max(range.begin, removedUpTo_);
    if (range.begin >= range.end) return;
    removedUpTo_ = range.end;
    results_.push_back({range, std::move(replacement)});
  }

  std::string_view text_;
  std::size_t begin_;
  std::size_t removedUpTo_ = 0;
  Operations results_;
};

}  // namespace

Operations plannedRemoval(std::string_view text, const std::vector<ByteRange>& ranges) {
  return Remover(text).plan(ranges);
}

}  // namespace zephyrdown

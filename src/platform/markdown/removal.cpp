#include "platform/markdown/removal.h"

#include <algorithm>

#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

using Ranges = std::vector<SourceRange>;
using RangeIterator = Ranges::const_iterator;

/// Plans removals line by line.
class Remover {
 public:
  Remover(std::string_view text, std::size_t bodyBegin) : text_(text), bodyBegin_(bodyBegin) {}

  std::vector<ZDKASTOperationResult> plan(const Ranges& ranges) {
    for (auto first = ranges.begin(); first != ranges.end();) {
      const auto last = removeLine(first, ranges.end());
      first = last;
    }
    return std::move(results_);
  }

 private:
  /// Removes what is on the line of `first`, or on the lines that its ranges join; gives the first
  /// range behind.
  RangeIterator removeLine(RangeIterator first, RangeIterator end) {
    SourceRange line{lineBegin(text_, first->begin), lineEnd(text_, first->end)};
    auto last = std::next(first);
    for (; last != end && last->begin <= line.end; ++last) line.end = lineEnd(text_, last->end);
    if (coversAll(line, first, last)) {
      add(wholeLine(line), {});
    } else {
      for (; first != last; ++first) removeInside(line, *first);
    }
    return last;
  }

  bool coversAll(SourceRange line, RangeIterator first, RangeIterator last) const {
    std::size_t at = line.begin;
    for (; first != last; ++first) {
      if (!isBlankText(text_.substr(at, first->begin - at))) return false;
      at = first->end;
    }
    return isBlankText(text_.substr(at, line.end - at));
  }

  SourceRange wholeLine(SourceRange line) const {
    SourceRange removed{line.begin, behindLineBreak(text_, line.end)};
    const bool isFirst = line.begin <= bodyBegin_;
    const bool isUnended = removed.end == line.end;
    const bool blankBelow = isBlankLine(removed.end);
    if (!isFirst && isUnended) removed.begin = previousLineEnd(text_, line.begin);
    if (!isFirst && (blankBelow || removed.end == text_.size())) {
      removed.begin = withoutBlankLineAbove(line.begin, removed.begin, isUnended);
    } else if (isFirst && blankBelow && skipBlankLines(text_, removed.end) < text_.size()) {
      removed.end = nextLine(text_, removed.end);
    }
    return removed;
  }

  std::size_t withoutBlankLineAbove(std::size_t line, std::size_t begin, bool isUnended) const {
    const std::size_t aboveEnd = previousLineEnd(text_, line);
    const std::size_t above = lineBegin(text_, aboveEnd);
    if (above <= bodyBegin_ || !isBlankText(text_.substr(above, aboveEnd - above))) return begin;
    return isUnended ? previousLineEnd(text_, above) : above;
  }

  bool isBlankLine(std::size_t begin) const {
    return begin < text_.size() && isBlankText(text_.substr(begin, lineEnd(text_, begin) - begin));
  }

  void removeInside(SourceRange line, SourceRange range) {
    while (range.begin > line.begin && range.end < line.end && isEmphasis(range)) {
      --range.begin;
      ++range.end;
    }
    const bool blankBefore = range.begin > line.begin && isBlank(text_[range.begin - 1]);
    const bool blankBehind = range.end == line.end || isBlank(text_[range.end]);
    if (blankBefore && blankBehind && range.begin - 1 >= removedUpTo_) {
      --range.begin;
    } else if (range.begin == line.begin && range.end < line.end && blankBehind) {
      ++range.end;
    }
    add(range, range.begin == line.begin ? guardedBegin(range.end, line.end) : std::string());
  }

  /// The same delimiters on both sides, which would be left as an empty pair.
  bool isEmphasis(SourceRange range) const {
    const char before = text_[range.begin - 1];
    return before == text_[range.end] && (before == '*' || before == '_' || before == '~');
  }

  /// "\\" where the rest of a line, now its begin, would start a block.
  std::string guardedBegin(std::size_t begin, std::size_t end) const {
    const std::string_view rest = text_.substr(begin, end - begin);
    const std::size_t mark = rest.find_first_not_of('#');
    const bool isHeading = rest.starts_with('#') && (mark == rest.npos || isBlank(rest[mark]));
    const bool isItem = !rest.empty() && std::string_view("-+*").find(rest[0]) != rest.npos &&
                        (rest.size() == 1 || isBlank(rest[1]));
    const bool isOther = rest.starts_with('>') || rest.starts_with("---") || rest.starts_with('=');
    return isHeading || isItem || isOther ? "\\" : "";
  }

  void add(SourceRange range, std::string replacement) {
    range.begin = std::max(range.begin, removedUpTo_);
    if (range.begin >= range.end) return;
    removedUpTo_ = range.end;
    results_.push_back({range, std::move(replacement)});
  }

  std::string_view text_;
  std::size_t bodyBegin_;
  std::size_t removedUpTo_ = 0;
  std::vector<ZDKASTOperationResult> results_;
};

}  // namespace

std::vector<ZDKASTOperationResult> plannedRemoval(std::string_view text, std::size_t bodyBegin,
                                                  const std::vector<SourceRange>& ranges) {
  return Remover(text, bodyBegin).plan(ranges);
}

}  // namespace zephyrdown

#include "platform/markdown/insertion.h"

#include <algorithm>

#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

/// What Markdown sees at one side of a seam.
struct Side {
  std::optional<BlockKind> kind;  // nothing where there is no block
  std::string line;               // the first line; not needed of the side above
};

Side lowerSideOf(std::string_view text) {
  const Document document = readDocument(text);
  Side side;
  if (!document.blocks.empty()) side.kind = document.blocks.back().kind;
  return side;
}

Side upperSideOf(std::string_view text) {
  const Document document = readDocument(text);
  Side side;
  if (!document.blocks.empty()) side.kind = document.blocks.front().kind;
  const std::size_t begin = skipBlankLines(text, 0);
  side.line = text.substr(begin, lineEnd(text, begin) - begin);
  return side;
}

/// Whether the line would turn a paragraph directly above into a heading or a table.
bool reachesUp(std::string_view line) {
  return line.find_first_not_of(" \t-=|:") == std::string_view::npos;
}

bool maySplitParagraph(const Side& below) {
  switch (*below.kind) {
    case BlockKind::paragraph:
      return !reachesUp(below.line);
    case BlockKind::heading:
      return below.line.find_first_not_of(' ') == below.line.find('#');
    case BlockKind::list:
    case BlockKind::quote:
    case BlockKind::fencedCode:
      return !reachesUp(below.line);
    default:
      return false;
  }
}

/// Whether the two sides need a blank line between them to stay two.
bool needBlankLine(const Side& above, const Side& below) {
  if (!above.kind) return false;
  if (!below.kind) return true;
  const bool isItem = below.kind == BlockKind::list || below.kind == BlockKind::lateList;
  switch (*above.kind) {
    case BlockKind::rule:
    case BlockKind::fencedCode:
      return false;
    case BlockKind::heading:
    case BlockKind::html:
      return true;
    case BlockKind::table:
      return !below.line.starts_with('|');
    case BlockKind::list:
    case BlockKind::lateList:
      return !isItem && (below.kind == BlockKind::paragraph || !maySplitParagraph(below));
    case BlockKind::quote:
      return below.kind == BlockKind::paragraph || !maySplitParagraph(below);
    default:
      return !maySplitParagraph(below);
  }
}

/// Whether a line below `text` would be read as a part of its last block.
bool swallowsNextLine(std::string text) {
  constexpr std::string_view kProbe = "\nx";
  const auto kind = lowerSideOf(text).kind;
  if (kind != BlockKind::fencedCode && kind != BlockKind::html) return false;
  return lowerSideOf(text.append(kProbe)).kind == kind;
}

std::size_t longestRun(std::string_view text, char wanted) {
  std::size_t longest = 0, run = 0;
  for (const char c : text) {
    run = c == wanted ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

/// A line that closes the code that `text` leaves open, or nothing where there is none.
std::string closingFence(std::string_view text) {
  const std::string open(text);
  if (!swallowsNextLine(open)) return {};
  for (const char mark : {'`', '~'}) {
    const std::size_t length = longestRun(text, mark);
    std::string fence(std::max<std::size_t>(length, 3), mark);
    if (length >= 3 && !swallowsNextLine(open + "\n" + fence)) return fence;
  }
  return {};
}

/// How many line breaks `text` ends in.
int lineBreaksAtEnd(std::string_view text) {
  int count = 0;
  while (!text.empty() && isLineBreak(text.back())) {
    text = text.substr(0, previousLineEnd(text, text.size()));
    ++count;
  }
  return count;
}

/// An insertion in the making.
class Piece {
 public:
  Piece(std::string_view text, std::string_view inserted)
      : lineBreak_(lineBreakStyle(text)), inserted_(inserted) {}

  void breakLine() { result_ += lineBreak_; }
  void addLine(std::string_view line) {
    result_ += line;
    breakLine();
  }
  void addText() { result_ += inserted_; }
  /// Ends the text in at least `count` line breaks.
  void endIn(int count) {
    for (int have = lineBreaksAtEnd(inserted_); have < count; ++have) breakLine();
  }
  /// Leaves one line break of the inserted text to those that are there already.
  void dropLastLineBreak() {
    if (lineBreaksAtEnd(inserted_) > 0) {
      inserted_ = inserted_.substr(0, previousLineEnd(inserted_, inserted_.size()));
    }
  }
  Operations at(std::size_t position) && { return {{{position, position}, std::move(result_)}}; }

 private:
  std::string_view lineBreak_;
  std::string_view inserted_;
  std::string result_;
};

/// Above `position`, which begins a line that is not blank, or at the end of a text of blank lines.
Operations plannedAbove(std::string_view text, std::size_t position, std::string_view inserted,
                        const Side* above) {
  Piece piece(text, inserted);
  const Side top = upperSideOf(inserted);
  if (above != nullptr && needBlankLine(*above, top)) piece.breakLine();
  piece.addText();
  const std::string_view rest = text.substr(position);
  if (rest.empty()) return std::move(piece).at(position);
  if (const std::string fence = closingFence(inserted); !fence.empty()) {
    piece.endIn(1);
    piece.addLine(fence);
    return std::move(piece).at(position);
  }
  const bool apart = needBlankLine(lowerSideOf(inserted), upperSideOf(rest));
  piece.endIn(apart && !isBlankText(rest.substr(0, lineEnd(rest, 0))) ? 2 : 1);
  return std::move(piece).at(position);
}

/// Below the last line of `text` before `limit` that is not blank, and above what follows it.
Operations plannedBelow(std::string_view text, std::size_t limit, std::string_view inserted,
                        bool belowTags) {
  const std::size_t end = lineEnd(text, contentEnd(text.substr(0, limit)));
  const std::string_view above = text.substr(0, end);
  const std::string_view tail = text.substr(end, limit - end);
  const bool isLast = limit == text.size();
  const Side top = upperSideOf(inserted);
  const std::string fence = closingFence(above);
  Piece piece(text, inserted);
  piece.breakLine();
  if (!fence.empty()) piece.addLine(fence);
  const bool keepsApart = isLast && skipBlankLines(tail, nextLine(tail, 0)) > nextLine(tail, 0);
  if (keepsApart || belowTags || (fence.empty() && needBlankLine(lowerSideOf(above), top))) {
    piece.breakLine();
  }
  if (!tail.empty()) piece.dropLastLineBreak();
  piece.addText();
  if (!isLast) {
    if (const std::string ownFence = closingFence(inserted); !ownFence.empty()) {
      piece.breakLine();
      piece.addLine(ownFence);
    } else if (lineBreaksAtEnd(tail) < 2 &&
               needBlankLine(lowerSideOf(inserted), upperSideOf(text.substr(limit)))) {
      piece.breakLine();
    }
  }
  return std::move(piece).at(end);
}

}  // namespace

Operations plannedAppend(std::string_view text, const Layout& layout, std::string_view inserted) {
  const std::size_t foot = layout.footBegin();
  const std::size_t end = contentEnd(text.substr(0, foot));
  const std::size_t first = text.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  if (end > first) {
    return plannedBelow(text, foot, inserted, !layout.hasBody() && layout.headEndsInTags());
  }
  if (layout.hasFoot()) {
    Piece piece(text, inserted);
    piece.addText();
    piece.endIn(2);
    return std::move(piece).at(foot);
  }
  Piece piece(text, inserted);
  piece.addText();
  if (text.size() > first) piece.endIn(1);
  return std::move(piece).at(first);
}

Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted) {
  if (!layout.hasBody()) return plannedAppend(text, layout, inserted);
  const std::size_t begin = layout.bodyBegin();
  if (!layout.headEnd() || nextLine(text, *layout.headEnd()) < begin) {
    return plannedAbove(text, begin, inserted, nullptr);
  }
  Side above;
  above.kind = BlockKind::paragraph;
  const bool belowHeading = layout.headEnd() == layout.headingEnd();
  return plannedAbove(text, begin, inserted, belowHeading ? nullptr : &above);
}

Operations plannedLastLine(std::string_view text, std::string_view line) {
  const std::size_t end = lineEnd(text, contentEnd(text));
  const std::string fence = closingFence(text.substr(0, end));
  Piece piece(text, line);
  if (end > 0) piece.breakLine();
  if (!fence.empty()) piece.addLine(fence);
  if (end > 0) piece.breakLine();
  piece.addText();
  return std::move(piece).at(end);
}

}  // namespace zephyrdown

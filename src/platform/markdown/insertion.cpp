#include "platform/markdown/insertion.h"

#include <algorithm>

#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

/// What Markdown sees at one side of a seam.
struct Side {
  std::optional<BlockKind> kind;  // nothing where there is no block
  std::string_view line = {};     // the first line; not needed of the side above
};

Side paragraphSide() {
  return {BlockKind::paragraph};
}

Side lowerSideOf(std::string_view text) {
  const Document document = readDocument(text);
  Side side;
  if (!document.blocks.empty()) side.kind = document.blocks.back().kind;
  return side;
}

/// The mark of an empty list item.
bool isBareMark(std::string_view line) {
  return line.find_first_not_of(" \t-+*.)0123456789") == std::string_view::npos;
}

Side upperSideOf(std::string_view text) {
  const Document document = readDocument(text);
  const std::size_t begin = skipBlankLines(text, 0);
  const std::size_t end = lineEnd(text, begin);
  Side side{std::nullopt, text.substr(begin, end - begin)};
  if (document.blocks.empty()) return side;
  const Block& block = document.blocks.front();
  // A paragraph that begins further down: definitions of references stand above.
  if (block.kind != BlockKind::paragraph || block.text.begin < end) side.kind = block.kind;
  if (block.kind == BlockKind::list && isBareMark(side.line)) side.kind = BlockKind::lateList;
  return side;
}

/// Whether the line would turn a paragraph directly above into a heading or a table.
bool reachesUp(std::string_view line) {
  return !line.empty() && line.find_first_not_of(" \t-=|:") == std::string_view::npos;
}

bool isPlainParagraph(const Side& side) {
  return side.kind == BlockKind::paragraph && !reachesUp(side.line);
}

bool maySplitParagraph(const Side& below) {
  switch (*below.kind) {
    case BlockKind::heading:
      return below.line.find_first_not_of(' ') == below.line.find('#');
    case BlockKind::paragraph:
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

/// Whether what stands below `text`, a blank line apart, would be read as a part of its last block:
/// of code or HTML that is not closed.
bool swallowsWhatFollows(std::string_view text) {
  constexpr std::string_view kProbe = "\n\nx";
  // The parser does not see a "<!--" that a text ends in, without a line break.
  const auto kind = lowerSideOf(std::string(text) + "\n").kind;
  if (kind != BlockKind::fencedCode && kind != BlockKind::html) return false;
  return lowerSideOf(std::string(text).append(kProbe)).kind == kind;
}

std::size_t longestRun(std::string_view text, char wanted) {
  std::size_t longest = 0, run = 0;
  for (const char c : text) {
    run = c == wanted ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

/// A line that closes the code or HTML that `text` leaves open, or nothing where there is none.
std::string closingLine(std::string_view text) {
  if (!swallowsWhatFollows(text)) return {};
  const std::string open = std::string(text) + "\n";
  for (const std::string& line :
       {std::string(longestRun(text, '`'), '`'), std::string(longestRun(text, '~'), '~'),
        std::string("-->"), std::string("</pre>"), std::string("</script>"),
        std::string("</style>"), std::string("</textarea>"), std::string("?>"), std::string("]]>"),
        std::string(">")}) {
    if (!line.empty() && !swallowsWhatFollows(open + line)) return line;
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
  void addClosing(std::string_view closing) { result_ += closing; }
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

/// Above the body.
Operations plannedAbove(std::string_view text, const Layout& layout, std::string_view inserted) {
  const std::size_t position = layout.bodyBegin();
  Piece piece(text, inserted);
  if (layout.bodyGoesOn() && needBlankLine(paragraphSide(), upperSideOf(inserted))) {
    piece.breakLine();
  }
  piece.addText();
  if (const std::string closing = closingLine(inserted); !closing.empty()) {
    piece.endIn(1);
    piece.addLine(closing);
    return std::move(piece).at(position);
  }
  const Side below = layout.bodyGoesOn() ? paragraphSide() : upperSideOf(text.substr(position));
  const Side bottom = lowerSideOf(inserted);
  const bool hasCutIn = layout.bodyCutsIn() && bottom.kind == BlockKind::paragraph;
  piece.endIn(!hasCutIn && needBlankLine(bottom, below) ? 2 : 1);
  return std::move(piece).at(position);
}

/// Below the last line of `text` before `limit` that is not blank, and above what follows it.
Operations plannedBelow(std::string_view text, std::size_t limit, std::string_view inserted,
                        bool belowTags) {
  const std::size_t end = lineEnd(text, contentEnd(text.substr(0, limit)));
  const std::string_view above = text.substr(0, end);
  const std::string_view tail = text.substr(end, limit - end);
  const bool isLast = limit == text.size();
  const bool isAttached = !isLast && nextLine(tail, 0) == tail.size();
  const Side top = upperSideOf(inserted);
  const std::string closing = closingLine(above);
  Piece piece(text, inserted);
  piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  const bool keepsApart = isLast && skipBlankLines(tail, nextLine(tail, 0)) > nextLine(tail, 0);
  // A paragraph may join the block above where the foot does so too.
  const bool mayJoin = isAttached && isPlainParagraph(top);
  const bool mustPart = closing.empty() && !mayJoin && needBlankLine(lowerSideOf(above), top);
  if (keepsApart || (belowTags && !isAttached) || mustPart) piece.breakLine();
  if (!tail.empty()) piece.dropLastLineBreak();
  piece.addText();
  if (isLast) return std::move(piece).at(end);
  if (const std::string ownClosing = closingLine(inserted); !ownClosing.empty()) {
    piece.endIn(1);
    piece.addClosing(ownClosing);
  } else if (isAttached && needBlankLine(lowerSideOf(inserted), paragraphSide())) {
    piece.breakLine();
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
  Piece piece(text, inserted);
  piece.addText();
  if (text.size() > first) piece.endIn(layout.hasFoot() ? 2 : 1);
  return std::move(piece).at(first);
}

Operations plannedPrepend(std::string_view text, const Layout& layout, std::string_view inserted) {
  if (!layout.hasBody()) return plannedAppend(text, layout, inserted);
  return plannedAbove(text, layout, inserted);
}

Operations plannedLastLine(std::string_view text, std::string_view line) {
  const std::size_t end = lineEnd(text, contentEnd(text));
  const std::string closing = closingLine(text.substr(0, end));
  Piece piece(text, line);
  if (end > 0) piece.breakLine();
  if (!closing.empty()) piece.addLine(closing);
  if (end > 0) piece.breakLine();
  piece.addText();
  return std::move(piece).at(end);
}

}  // namespace zephyrdown

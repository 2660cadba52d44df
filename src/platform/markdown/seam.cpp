#include "platform/markdown/seam.h"

#include <algorithm>

#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

/// The mark of an empty list item.
bool isBareMark(std::string_view line) {
  return line.find_first_not_of(" \t-+*.)0123456789") == std::string_view::npos;
}

/// Whether the line would turn a paragraph directly above into a heading or a table.
bool reachesUp(std::string_view line) {
  return !line.empty() && line.find_first_not_of(" \t-=|:") == std::string_view::npos;
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

/// Whether what stands below `text`, a blank line apart, would be read as a part of its last block:
/// of code or HTML that is not closed.
bool swallowsWhatFollows(std::string_view text, const Side& last) {
  if (last.kind != BlockKind::fencedCode && last.kind != BlockKind::html) return false;
  return lowerSideOf(std::string(text) + "\n\nx").kind == last.kind;
}

std::size_t longestRun(std::string_view text, char wanted) {
  std::size_t longest = 0, run = 0;
  for (const char c : text) {
    run = c == wanted ? run + 1 : 0;
    longest = std::max(longest, run);
  }
  return longest;
}

}  // namespace

Side paragraphSide() {
  return {BlockKind::paragraph};
}

Side lowerSideOf(std::string_view text) {
  // The parser does not see a "<!--" that a text ends in, without a line break.
  const Document document = readDocument(std::string(text) + "\n");
  Side side;
  if (!document.blocks.empty()) side.kind = document.blocks.back().kind;
  return side;
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

bool isPlainParagraph(const Side& side) {
  return side.kind == BlockKind::paragraph && !reachesUp(side.line);
}

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

std::string closingLine(std::string_view text, const Side& last) {
  if (!swallowsWhatFollows(text, last)) return {};
  const std::string open = std::string(text) + "\n";
  for (const std::string& line :
       {std::string(longestRun(text, '`'), '`'), std::string(longestRun(text, '~'), '~'),
        std::string("-->"), std::string("</pre>"), std::string("</script>"),
        std::string("</style>"), std::string("</textarea>"), std::string("?>"), std::string("]]>"),
        std::string(">")}) {
    if (line.empty()) continue;
    const std::string closed = open + line;
    if (!swallowsWhatFollows(closed, lowerSideOf(closed))) return line;
  }
  return {};
}

}  // namespace zephyrdown

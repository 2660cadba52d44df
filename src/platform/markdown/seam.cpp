#include "platform/markdown/seam.h"

#include <algorithm>
#include <utility>

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

/// Takes the lines of a text one by one.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  std::optional<std::string_view> next() {
    if (at_ == text_.size()) return std::nullopt;
    const std::size_t begin = at_;
    const std::size_t end = lineEnd(text_, begin);
    at_ = behindLineBreak(text_, end);
    return text_.substr(begin, end - begin);
  }

 private:
  std::string_view text_;
  std::size_t at_ = 0;
};

void readAll(BlockScanner& scanner, std::string_view text) {
  Lines lines(text);
  while (const auto line = lines.next()) scanner.read(*line);
}

bool isBlankLine(const ScannedLine& line) {
  return !line.kind && line.opened == 0;
}

bool haveSamePlace(const ScannedLine& a, const ScannedLine& b) {
  return a.matched == b.matched && a.opened == b.opened;
}

/// Whether the line, by itself a paragraph's, reads `now` as a row of the table above.
bool isRow(const ScannedLine& now, const ScannedLine& alone, std::string_view line) {
  return now.kind == BlockKind::table && alone.kind == BlockKind::paragraph &&
         line.starts_with('|');
}

/// Whether the line reads `now`, below others, as it did `alone`.
bool staysByItself(const ScannedLine& now, const ScannedLine& alone, std::string_view line) {
  if (now.kind != alone.kind && !isRow(now, alone, line)) return false;
  if (now.isLazy && !alone.isLazy) return false;
  return haveSamePlace(now, alone) && now.mayDefine == alone.mayDefine;
}

/// Whether the line reads `now` as it did `before` something was put above it. A line below a list
/// or quote, without its marks, may become a paragraph of its own.
bool staysWhatItWas(const ScannedLine& now, const ScannedLine& before) {
  if (isBlankLine(now) && isBlankLine(before)) return true;
  if (now.kind != before.kind || (before.joinsList && !now.joinsList)) return false;
  if (now.isLazy && !before.isLazy) return false;
  return haveSamePlace(now, before) && now.mayDefine == before.mayDefine;
}

/// Notices where two paragraphs became one and an underline below makes a heading of both.
class Joint {
 public:
  /// Whether the line, read `now` and `before` by itself, leaves what stands above the seam alone.
  bool holds(const ScannedLine& now, const ScannedLine& before) {
    if (now.isFirst || now.kind != BlockKind::paragraph) {
      const bool isUnderline = now.kind == BlockKind::heading && !now.isFirst;
      return !std::exchange(isJoined_, false) || !isUnderline;
    }
    isJoined_ |= before.isFirst;
    return true;
  }
  bool isOpen() const { return isJoined_; }

 private:
  bool isJoined_ = false;
};

/// The begin of a title, or of the rest of a definition whose label stands above.
bool mayGoOnWithDefinition(const BlockScanner& above, std::string_view line) {
  return above.mayDefine() && !isBlankText(line);
}

/// Whether `text` begins with the definition of a reference. Its first paragraph tells.
bool beginsWithDefinition(std::string_view text) {
  std::size_t end = 0;
  while (end < text.size() && skipBlankLines(text, end) == end) end = nextLine(text, end);
  text = text.substr(0, end);
  const Document document = readDocument(text);
  return document.blocks.empty() || document.blocks.front().text.begin >= lineEnd(text, 0);
}

}  // namespace

Side paragraphSide() {
  return {BlockKind::paragraph};
}

Side lowerSideOf(const BlockScanner& above) {
  return {above.outermostKind()};
}

Side upperSideOf(std::string_view text) {
  text.remove_prefix(skipBlankLines(text, 0));
  Side side{std::nullopt, text.substr(0, lineEnd(text, 0))};
  BlockScanner scanner;
  Lines lines(text);
  while (const auto line = lines.next()) {
    const ScannedLine read = scanner.read(*line);
    if (side.kind == BlockKind::paragraph && (read.isFirst || !read.kind || read.opened > 0)) break;
    const bool mayDefine = !side.kind && read.mayDefine;
    side.kind = scanner.outermostKind();
    if (side.kind != BlockKind::paragraph) break;
    if (mayDefine && beginsWithDefinition(text)) return {std::nullopt, side.line};
  }
  if (side.kind != BlockKind::list) return side;
  const auto mark = listMark(side.line.substr(skipBlanks(side.line, 0)));
  if (!mark || !mark->isFirst || isBareMark(side.line)) side.kind = BlockKind::lateList;
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

BlockScanner scanned(std::string_view text) {
  BlockScanner scanner;
  readAll(scanner, text);
  return scanner;
}

bool Seam::holds(std::string_view before, std::string_view inserted,
                 std::string_view behind) const {
  BlockScanner now = above;
  readAll(now, before);
  BlockScanner alone;
  Lines own(inserted);
  Joint top, bottom;
  bool isBelowRow = false;
  while (const auto line = own.next()) {
    const bool mayVanish = mayGoOnWithDefinition(now, *line);
    const ScannedLine here = now.read(*line);
    const ScannedLine there = alone.read(*line);
    if (!staysByItself(here, there, *line) || !top.holds(here, there)) return false;
    if (mayVanish && !here.isFirst && there.isFirst) return false;
    if (isBelowRow && there.kind == BlockKind::table) return false;  // a table of its own
    isBelowRow |= isRow(here, there, *line);
  }
  readAll(now, behind);
  BlockScanner was = above;
  Lines old(below);
  while (const auto line = old.next()) {
    if (now == was && !bottom.isOpen()) break;
    const bool mayVanish = mayGoOnWithDefinition(now, *line) && !mayGoOnWithDefinition(was, *line);
    const ScannedLine here = now.read(*line);
    const ScannedLine there = was.read(*line);
    if (!staysWhatItWas(here, there) || !bottom.holds(here, there)) return false;
    if (mayVanish && !here.isFirst) return false;
  }
  return true;
}

}  // namespace zephyrdown

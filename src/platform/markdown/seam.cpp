#include "platform/markdown/seam.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/markdown/line_readings.h"
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

/// Iterates over the lines of a text.
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

/// Whether the line is `now` a row of the table above, and a paragraph by itself.
bool isRow(const ScannedLine& now, const ScannedLine& alone, std::string_view line) {
  return now.kind == BlockKind::table && alone.kind == BlockKind::paragraph &&
         line.starts_with('|');
}

/// Whether the line is read the same `now`, below others, as `alone`.
bool staysByItself(const ScannedLine& now, const ScannedLine& alone, std::string_view line) {
  if (now.kind != alone.kind && !isRow(now, alone, line)) return false;
  if (now.isLazy && !alone.isLazy) return false;
  return haveSamePlace(now, alone);
}

/// Whether the line is read the same `now` as `before` the insertion above it. A lazy continuation
/// line may become a paragraph of its own.
bool staysWhatItWas(const ScannedLine& now, const ScannedLine& before) {
  if (isBlankLine(now) && isBlankLine(before)) return true;
  if (now.kind != before.kind || (before.joinsList && !now.joinsList)) return false;
  if (now.isLazy && !before.isLazy) return false;
  return haveSamePlace(now, before);
}

/// Whether no line above can change how this line and those below are read: a top-level block or
/// item begins here, below a blank line or with a mark that interrupts a paragraph. The parser does
/// not read indented lines below an empty item as code.
bool isCut(const ScannedLine& line, bool isBelowBlank, std::string_view text) {
  if (line.matched > 0 || !line.kind || !(line.isFirst || line.opened > 0)) return false;
  if (line.kind == BlockKind::indentedCode) return false;
  if (isBelowBlank) return true;
  const auto mark = listMark(text.substr(skipBlanks(text, 0)));
  return line.opened > 0 && mark && mark->isFirst;
}

/// Appends `lines` as whole lines.
void appendLines(std::string& text, std::string_view lines) {
  if (lines.empty()) return;
  if (text.ends_with('\r') && lines.starts_with('\n')) text += '\n';
  text += lines;
  if (!isLineBreak(lines.back())) text += '\n';
}

std::size_t lineCount(std::string_view text) {
  std::size_t count = 0;
  for (Lines lines(text); lines.next();) ++count;
  return count;
}

/// Limit in bytes of the blocks around a place that are parsed, so that an insertion into a large
/// note stays cheap.
constexpr std::size_t kMostRead = 16'384;

/// An HTML block that ends all blocks above it.
constexpr std::string_view kWall = "\n<!-- -->\n\n";

/// Splits the readings of a joined text into those of its parts.
class Parts {
 public:
  explicit Parts(const std::string& text) : readings_(lineReadings(text)) {}

  std::span<const LineReading> next(std::string_view part) {
    const std::size_t begin = std::exchange(at_, at_ + lineCount(part));
    return std::span(readings_).subspan(begin, at_ - begin);
  }

 private:
  std::vector<LineReading> readings_;
  std::size_t at_ = 0;
};

bool isRow(const LineReading& now, const LineReading& alone, std::string_view line) {
  return now.kind == BlockKind::table && alone.kind == BlockKind::paragraph &&
         line.starts_with('|');
}

bool areSame(std::span<const LineReading> now, std::span<const LineReading> alone,
             std::string_view text) {
  Lines lines(text);
  return std::equal(now.begin(), now.end(), alone.begin(), alone.end(),
                    [&](const LineReading& a, const LineReading& b) {
                      const std::string_view line = *lines.next();
                      return a == b || isRow(a, b, line);
                    });
}

/// Ignores a backslash at the end of the last line, which may become a hard line break in an
/// inserted text.
std::vector<LineReading> withoutBackslash(std::span<const LineReading> lines) {
  std::vector<LineReading> readings(lines.begin(), lines.end());
  if (!readings.empty()) readings.back().endsInBackslash = false;
  return readings;
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
    side.kind = scanner.outermostKind();
    if (side.kind != BlockKind::paragraph) break;
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

Seam::Seam(std::string_view text, const Document& document, std::size_t end, std::size_t below)
    : text_(text),
      document_(document),
      begin_(std::min(document.bodyBegin, end)),
      end_(end),
      below_(below),
      cut_(begin_) {
  bool isBelowBlank = true;
  for (std::size_t at = begin_; at < end; at = nextLine(text, at)) {
    const std::string_view line = text.substr(at, lineEnd(text, at) - at);
    const ScannedLine read = above_.read(line);
    if (isCut(read, isBelowBlank, line)) cut_ = at;
    isBelowBlank = isBlankLine(read);
  }
}

bool Seam::holds(std::string_view before, std::string_view inserted,
                 std::string_view behind) const {
  std::size_t end = below_;
  return keepsPlaces(before, inserted, behind, end) && keepsReadings(before, inserted, behind, end);
}

/// Whether all lines stay in their lists and quotes. Sets `end` to the first line below that cannot
/// be affected.
bool Seam::keepsPlaces(std::string_view before, std::string_view inserted, std::string_view behind,
                       std::size_t& end) const {
  BlockScanner now = above_;
  readAll(now, before);
  BlockScanner alone;
  Lines own(inserted);
  while (const auto line = own.next()) {
    if (!staysByItself(now.read(*line), alone.read(*line), *line)) return false;
  }
  readAll(now, behind);
  BlockScanner was = above_;
  bool isSame = false, isBelowBlank = false, hasBlock = false;
  for (; end < text_.size(); end = nextLine(text_, end)) {
    const std::string_view line = text_.substr(end, lineEnd(text_, end) - end);
    isSame = isSame || now == was;
    const ScannedLine there = was.read(line);
    if (!isSame && !staysWhatItWas(now.read(line), there)) return false;
    if (isSame && hasBlock && isCut(there, isBelowBlank, line)) return true;
    isBelowBlank = isBlankLine(there);
    hasBlock |= !isBelowBlank;
  }
  return true;
}

/// Whether the parser reads all lines as before, and the inserted ones as if after kWall.
bool Seam::keepsReadings(std::string_view before, std::string_view inserted,
                         std::string_view behind, std::size_t end) const {
  if (end - cut_ > kMostRead) return true;
  const std::string_view above = text_.substr(cut_, end_ - cut_);
  const std::string_view below = text_.substr(below_, end - below_);
  std::string now;
  for (const auto lines : {above, before, inserted, behind, below}) appendLines(now, lines);
  if (!keepsTitle(now, inserted, end)) return false;
  std::string apart;
  const std::string closing = scanned(inserted).closingLine();
  for (const auto lines : {kWall, inserted, std::string_view(closing), kWall, above, below}) {
    appendLines(apart, lines);
  }
  Parts there(apart);
  there.next(kWall);
  const auto alone = there.next(inserted);
  there.next(closing);
  there.next(kWall);
  const auto oldAbove = there.next(above);
  const auto oldBelow = there.next(below);
  Parts here(std::string(kWall) + now);
  here.next(kWall);
  if (!areSame(here.next(above), oldAbove, above)) return false;
  here.next(before);
  if (!areSame(withoutBackslash(here.next(inserted)), withoutBackslash(alone), inserted))
    return false;
  here.next(behind);
  return areSame(here.next(below), oldBelow, below);
}

/// Whether the lines from the cut on, with the text in place, leave the title as it was.
bool Seam::keepsTitle(const std::string& lines, std::string_view inserted, std::size_t end) const {
  const auto title = document_.headingEnd ? document_.headingEnd : document_.titleEnd;
  if ((title && *title < cut_) || end - begin_ > kMostRead) return true;
  const Document before = readDocument(text_.substr(0, end));
  const std::string longer = std::string(text_.substr(0, cut_)) + lines;
  const Document after = readDocument(longer);
  if (after.bodyBegin != before.bodyBegin) return false;
  const bool isBelow = document_.headingEnd && !before.headingEnd;
  if (isBelow) return !readDocument(inserted).headingEnd;
  if (!before.headingEnd && (!before.titleEnd || readDocument(inserted).headingEnd)) return true;
  return after.title == before.title;
}

}  // namespace zephyrdown

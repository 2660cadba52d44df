#include "platform/markdown/layout.h"

#include <algorithm>

#include "platform/markdown/block_scanner.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

ByteRange rangeOf(const HashtagMention& mention) {
  return mention.range;
}
ByteRange rangeOf(const Block& block) {
  return block.text;
}
ByteRange rangeOf(const ByteRange& range) {
  return range;
}

/// The first item whose range ends after `position`.
template <typename Items>
auto firstEndingBehind(const Items& items, std::size_t position) {
  return std::partition_point(items.begin(), items.end(),
                              [&](const auto& item) { return rangeOf(item).end <= position; });
}

bool isIndented(std::string_view text, std::size_t line) {
  return text.substr(line).starts_with("  ") || text.substr(line).starts_with('\t');
}

}  // namespace

Layout::Layout(std::string_view text, const Document& document) : text_(text), document_(document) {
  findFootnotes();
  std::size_t line = passTagLines(skipBlankLines(text, document.bodyBegin));
  line = passTitle(skipBlankLines(text, line));
  if (headingEnd_) line = passTagLines(line);
  findFoot(line);
  if (const std::size_t next = skipBlankLines(text, line); next < footBegin_ && !headIsBlock_) {
    line = passTagLines(next);
  }
  bodyBegin_ = std::min(skipBlankLines(text, line), footBegin_);
}

bool Layout::isTagLine(std::size_t begin) const {
  if (begin >= text_.size() || text_[begin] != '#' || isHeader(begin)) return false;
  const std::size_t end = lineEnd(text_, begin);
  std::size_t at = begin;
  for (auto tag = firstEndingBehind(document_.hashtags, begin);
       tag != document_.hashtags.end() && tag->range.begin < end; ++tag) {
    if (skipBlanks(text_, at) != tag->range.begin) return false;
    at = tag->range.end;
  }
  return isBlankText(text_.substr(at, end - at));
}

/// Whether the line is part of an underlined heading, or the header of a table.
bool Layout::isHeader(std::size_t line) const {
  const auto block = firstEndingBehind(document_.blocks, line);
  if (block == document_.blocks.end()) return false;
  if (block->kind == BlockKind::table) return lineBegin(text_, block->text.begin) == line;
  return block->kind == BlockKind::heading && block->text.begin <= line;
}

std::optional<std::size_t> Layout::lineBelowHeading() const {
  if (!document_.headingEnd) return std::nullopt;
  const std::size_t line = nextLine(text_, *document_.headingEnd);
  const std::size_t content = skipBlanks(text_, line);
  const bool isUnderlined = isUnderline(text_.substr(content, lineEnd(text_, content) - content));
  return isUnderlined ? nextLine(text_, line) : line;
}

bool Layout::bodyContinuesHead() const {
  const auto block = firstEndingBehind(document_.blocks, bodyBegin_);
  return hasBody() && block != document_.blocks.end() && block->text.begin < bodyBegin_ &&
         block->kind == BlockKind::paragraph;
}

bool Layout::headStandsAlone() const {
  if (!bodyContinuesHead()) return true;
  const Document head = readDocument(text_.substr(0, bodyBegin_));
  const auto below = firstEndingBehind(document_.hashtags, bodyBegin_);
  return head.title == document_.title &&
         head.hashtags.size() == static_cast<std::size_t>(below - document_.hashtags.begin());
}

bool Layout::bodyInterruptsHead() const {
  return headEnd_ && headEnd_ != headingEnd_ && behindLineBreak(text_, *headEnd_) == bodyBegin_;
}

void Layout::endHead(std::size_t end, bool inTags) {
  headEnd_ = end;
  headEndsInTags_ = inTags;
}

/// Adds the tag lines from `line` on to the head; returns the next line.
std::size_t Layout::passTagLines(std::size_t line) {
  while (isTagLine(line)) {
    const std::size_t end = lineEnd(text_, line);
    topTagsEnd_ = lastTagEnd(end);
    endHead(end, /*inTags=*/true);
    line = behindLineBreak(text_, end);
  }
  return line;
}

/// Adds a heading, or the first line of text, at or below `line` to the head; returns the next
/// line.
std::size_t Layout::passTitle(std::size_t line) {
  if (line >= text_.size() || startsFootnote(line)) return line;
  const auto block = firstEndingBehind(document_.blocks, line);
  const std::size_t firstEnd = lineEnd(text_, line);
  const bool isHere = block != document_.blocks.end() && block->text.begin < firstEnd;
  if (isHere && block->kind == BlockKind::heading) {
    std::size_t end = lineEnd(text_, block->text.end);
    const bool isUnderlined =
        !isHeadingLine(text_.substr(line, firstEnd - line).substr(skipBlanks(text_, line) - line));
    if (isUnderlined) end = lineEnd(text_, behindLineBreak(text_, end));
    headingEnd_ = end;
    endHead(end, /*inTags=*/false);
    return behindLineBreak(text_, end);
  }
  const bool isParagraph = isHere && block->kind == BlockKind::paragraph;
  const std::size_t end = std::max(isParagraph ? firstEnd : line, titleEnd(line));
  if (end == line) return line;
  headIsBlock_ = !isParagraph;
  endHead(end, /*inTags=*/false);
  return behindLineBreak(text_, end);
}

/// The end of a title that is not a heading, or of the whole block that its line cannot be
/// separated from; `line` if no title follows.
std::size_t Layout::titleEnd(std::size_t line) const {
  if (!document_.titleEnd || *document_.titleEnd <= line) return line;
  const std::size_t title = *document_.titleEnd;
  const auto block = firstEndingBehind(document_.blocks, title - 1);
  const bool isBlock = block != document_.blocks.end() && block->text.begin < title &&
                       block->kind != BlockKind::paragraph;
  return isBlock ? blockEnd(title) : lineEnd(text_, title);
}

/// The end of the last line of the top-level block around `position`, excluding tag lines directly
/// below it.
std::size_t Layout::blockEnd(std::size_t position) const {
  BlockScanner scanner;
  std::size_t end = document_.bodyBegin;
  for (std::size_t line = end; line < text_.size(); line = nextLine(text_, line)) {
    const std::size_t here = lineEnd(text_, line);
    const ScannedLine read = scanner.read(text_.substr(line, here - line));
    const bool isStart = read.matched == 0 && (read.isFirst || read.opened > 0) && !read.joinsList;
    if (isStart && line > position) break;
    if (read.kind || read.opened > 0) end = here;
  }
  while (end > position && isTagLine(lineBegin(text_, end)) && lineEnd(text_, position) < end) {
    end = previousLineEnd(text_, lineBegin(text_, end));
  }
  return end;
}

/// Finds the foot from the text's end upwards, over blank lines, tag lines and footnotes.
void Layout::findFoot(std::size_t floor) {
  footBegin_ = text_.size();
  while (true) {
    const std::size_t end = contentEnd(text_.substr(0, footBegin_));
    if (end <= floor) return;
    const std::size_t line = lineBegin(text_, end - 1);
    if (isTagLine(line)) {
      if (!bottomTagsEnd_) bottomTagsEnd_ = lastTagEnd(lineEnd(text_, line));
      footBegin_ = line;
    } else if (const ByteRange* footnote = footnoteAt(line); footnote && footnote->begin >= floor) {
      footBegin_ = footnote->begin;
    } else {
      return;
    }
  }
}

void Layout::findFootnotes() {
  if (text_.find("[^") == npos) return;
  for (std::size_t line = document_.bodyBegin; line < text_.size();) {
    const std::size_t end = startsFootnote(line) ? footnoteEnd(line) : nextLine(text_, line);
    if (startsFootnote(line)) footnotes_.push_back({line, end});
    line = end;
  }
}

/// Whether the line begins with "[^label]:" as text and not as code.
bool Layout::startsFootnote(std::size_t line) const {
  const std::string_view here = text_.substr(line);
  if (!here.starts_with("[^") || isHeader(line)) return false;
  const std::size_t end = here.find_first_of(" \t\r\n[]", 2);
  return end != npos && end > 2 && here.substr(end).starts_with("]:") &&
         stretchAt(document_, line) != nullptr;
}

/// The end of the footnote that begins at `line`: its lines up to a blank or tag line, and
/// indented ones after blank lines.
std::size_t Layout::footnoteEnd(std::size_t line) const {
  line = nextLine(text_, line);
  while (line < text_.size()) {
    const std::size_t next = skipBlankLines(text_, line);
    const bool goesOn =
        next == line ? goesOnWithFootnote(line) : next < text_.size() && isIndented(text_, next);
    if (!goesOn) break;
    line = nextLine(text_, next);
  }
  return line;
}

/// Whether the line directly below one of a footnote belongs to it.
bool Layout::goesOnWithFootnote(std::size_t line) const {
  if (isTagLine(line) || startsFootnote(line)) return false;
  const auto block = firstEndingBehind(document_.blocks, line);
  const bool beginsHere = block != document_.blocks.end() && block->text.begin >= line &&
                          block->text.begin < lineEnd(text_, line);
  return isIndented(text_, line) || !beginsHere;
}

const ByteRange* Layout::footnoteAt(std::size_t position) const {
  const auto found = firstEndingBehind(footnotes_, position);
  return found != footnotes_.end() && found->begin <= position ? &*found : nullptr;
}

/// The end of the last hashtag before `lineEnd`.
std::size_t Layout::lastTagEnd(std::size_t lineEnd) const {
  return std::prev(firstEndingBehind(document_.hashtags, lineEnd))->range.end;
}

}  // namespace zephyrdown

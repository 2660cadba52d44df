#include "platform/markdown/block_scanner.h"

#include <algorithm>

#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

constexpr std::size_t kCodeIndent = 4;

BlockKind kindOf(const Container& container) {
  return container.mark == '>' ? BlockKind::quote : BlockKind::list;
}

}  // namespace

ScannedLine BlockScanner::read(std::string_view text) {
  text_ = text;
  ScannedLine line;
  matchContainers(line);
  if (readOpenBlock(line)) return line;
  if (isAtEnd(line)) {
    leaf_.reset();
    containers_.resize(line.matched);
  } else {
    while (readContainer(line)) {
    }
    if (!isAtEnd(line)) readLeaf(line);
  }
  return line;
}

std::string BlockScanner::closingLine() const {
  if (!containers_.empty()) return {};
  if (leaf_ == BlockKind::fencedCode) return std::string(fence_.length, fence_.mark);
  if (leaf_ != BlockKind::html) return {};
  switch (html_) {
    case HTMLKind::verbatim:
      return "</" + verbatimTag_ + ">";
    case HTMLKind::comment:
      return "-->";
    case HTMLKind::instruction:
      return "?>";
    case HTMLKind::declaration:
      return ">";
    case HTMLKind::cdata:
      return "]]>";
    default:
      return {};
  }
}

bool BlockScanner::operator==(const BlockScanner& other) const {
  if (leaf_ != other.leaf_ || containers_ != other.containers_) return false;
  if (leaf_ == BlockKind::fencedCode) return fence_ == other.fence_;
  if (leaf_ == BlockKind::html) return html_ == other.html_;
  if (leaf_ != BlockKind::paragraph) return true;
  return std::min<std::size_t>(lines_, 2) == std::min<std::size_t>(other.lines_, 2) &&
         (lines_ > 1 || headerCells_ == other.headerCells_);
}

bool BlockScanner::isAtEnd(const ScannedLine& line) const {
  return line.content == text_.size();
}

void BlockScanner::skipBlanks(ScannedLine& line) {
  constexpr std::size_t kTab = 4;
  const std::size_t before = column_;
  for (; !isAtEnd(line) && isBlank(text_[line.content]); ++line.content) {
    column_ = text_[line.content] == '\t' ? (column_ / kTab + 1) * kTab : column_ + 1;
  }
  line.indent = column_ - before;
}

void BlockScanner::matchContainers(ScannedLine& line) {
  column_ = 0;
  skipBlanks(line);
  for (; line.matched < containers_.size(); ++line.matched) {
    const Container& container = containers_[line.matched];
    if (container.mark == '>') {
      if (line.indent >= kCodeIndent || !content(line).starts_with('>')) break;
      skipQuoteMark(line);
    } else if (line.indent >= container.indent) {
      line.indent -= container.indent;
    } else {
      break;
    }
  }
  if (!isAtEnd(line)) return;
  const auto goesOnWhenBlank = [](const Container& c) { return c.mark != '>' && !c.isEmpty; };
  while (line.matched < containers_.size() && goesOnWhenBlank(containers_[line.matched])) {
    ++line.matched;
  }
}

/// Skips the mark and the blank that belongs to it.
void BlockScanner::skipQuoteMark(ScannedLine& line) {
  ++line.content;
  ++column_;
  skipBlanks(line);
  if (line.indent > 0) --line.indent;
}

/// Whether the line belongs to an open code or HTML block.
bool BlockScanner::readOpenBlock(ScannedLine& line) {
  if (leaf_ != BlockKind::fencedCode && leaf_ != BlockKind::html) return false;
  const bool isCode = leaf_ == BlockKind::fencedCode;
  const bool endsInBlank = !isCode && html_ >= HTMLKind::block;
  if (line.matched < containers_.size() || (endsInBlank && isAtEnd(line))) {
    leaf_.reset();
    return false;
  }
  line.kind = leaf_;
  const bool isEnd = isCode ? line.indent < kCodeIndent && isClosingFence(content(line), fence_)
                            : endsHTML(content(line), html_);
  if (isEnd) leaf_.reset();
  return true;
}

/// Opens the quote or list item that begins at the content.
bool BlockScanner::readContainer(ScannedLine& line) {
  if (line.indent >= kCodeIndent || isAtEnd(line)) return false;
  const std::string_view here = content(line);
  if (here[0] == '>') {
    openContainer(line, '>');
    skipQuoteMark(line);
    return true;
  }
  const auto mark = listMark(here);
  if (!mark || isRule(here) || (isBelowParagraph(line) && isUnderline(here))) return false;
  const bool isBare = isBlankText(here.substr(mark->length));
  if (isBelowParagraph(line) && (isBare || !mark->isFirst)) return false;
  const std::size_t indent = line.indent + mark->length;
  openContainer(line, mark->kind);
  line.content += mark->length;
  column_ += mark->length;
  skipBlanks(line);
  const bool isWide = isBare || line.indent > kCodeIndent;  // one blank belongs to the mark
  const std::size_t blanks = isWide ? 1 : line.indent;
  line.indent -= std::min(blanks, line.indent);
  containers_.back().indent = indent + blanks;
  containers_.back().isEmpty = isBare;
  return true;
}

void BlockScanner::openContainer(ScannedLine& line, char mark) {
  if (line.opened == 0) {
    line.joinsList =
        mark != '>' && line.matched < containers_.size() && containers_[line.matched].mark == mark;
    containers_.resize(line.matched);
    leaf_.reset();
  }
  if (!containers_.empty()) containers_.back().isEmpty = false;
  containers_.push_back({mark});
  ++line.opened;
  outermost_ = kindOf(containers_.front());
}

bool BlockScanner::goesOnWithParagraph(const ScannedLine& line) const {
  return leaf_ == BlockKind::paragraph && line.opened == 0;
}

bool BlockScanner::isInside(const ScannedLine& line) const {
  return line.opened == 0 && line.matched == containers_.size();
}

bool BlockScanner::isBelowParagraph(const ScannedLine& line) const {
  return leaf_ == BlockKind::paragraph && isInside(line);
}

void BlockScanner::readLeaf(ScannedLine& line) {
  const bool isCode = line.indent >= kCodeIndent;
  if (isCode && !goesOnWithParagraph(line)) {
    const bool goesOn = leaf_ == BlockKind::indentedCode && isInside(line);
    beginLeaf(line, BlockKind::indentedCode);
    line.isFirst = !goesOn;
  } else if (!isCode && (readOneLine(line) || readVerbatim(line) || readTable(line))) {
    return;
  } else if (goesOnWithParagraph(line)) {
    line.kind = BlockKind::paragraph;
    line.isLazy = line.matched < containers_.size();
    ++lines_;
  } else {
    beginLeaf(line, BlockKind::paragraph);
    lines_ = 1;
    headerCells_ = columnsOfRow(content(line));
  }
}

/// Reads headings, rules, and the underline that turns the paragraph above into a heading.
bool BlockScanner::readOneLine(ScannedLine& line) {
  const std::string_view here = content(line);
  if (isBelowParagraph(line) && isUnderline(here)) {
    turnParagraphInto(BlockKind::heading, line);
  } else if (isHeadingLine(here)) {
    beginLeaf(line, BlockKind::heading);
  } else if (isRule(here)) {
    beginLeaf(line, BlockKind::rule);
  } else {
    return false;
  }
  leaf_.reset();
  return true;
}

/// Reads the first line of a code or HTML block.
bool BlockScanner::readVerbatim(ScannedLine& line) {
  const std::string_view here = content(line);
  if (const auto fence = openingFence(here)) {
    fence_ = *fence;
    beginLeaf(line, BlockKind::fencedCode);
    return true;
  }
  const HTMLKind html = htmlStart(here);
  if (html == HTMLKind::none) return false;
  if (html == HTMLKind::tag && goesOnWithParagraph(line)) return false;
  html_ = html;
  beginLeaf(line, BlockKind::html);
  if (html == HTMLKind::verbatim) verbatimTag_ = here.substr(1, here.find_first_of(" \t>") - 1);
  if (html < HTMLKind::block && endsHTML(here, html)) leaf_.reset();
  return true;
}

bool BlockScanner::readTable(ScannedLine& line) {
  if (leaf_ == BlockKind::table && isInside(line)) {
    line.kind = leaf_;
    return true;
  }
  if (!isBelowParagraph(line) || lines_ != 1) return false;
  if (columnsOfDelimiterRow(content(line)) != headerCells_) return false;
  turnParagraphInto(BlockKind::table, line);
  return true;
}

void BlockScanner::turnParagraphInto(BlockKind kind, ScannedLine& line) {
  line.kind = leaf_ = kind;
  if (containers_.empty()) outermost_ = kind;
}

void BlockScanner::beginLeaf(ScannedLine& line, BlockKind kind) {
  containers_.resize(line.matched + line.opened);
  if (containers_.empty()) {
    outermost_ = kind;
  } else {
    containers_.back().isEmpty = false;
  }
  line.kind = leaf_ = kind;
  line.isFirst = true;
}

}  // namespace zephyrdown

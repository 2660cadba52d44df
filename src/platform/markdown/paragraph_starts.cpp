#include "platform/markdown/paragraph_starts.h"

#include <utility>

#include "platform/markdown/ascii.h"
#include "platform/markdown/block_starts.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

bool isUnderlineOfHeader(std::string_view content) {
  return content.find('|') != npos && content.find('-') != npos &&
         content.find_first_not_of("|:- \t") == npos;
}

}  // namespace

std::size_t containerMark(std::string_view line, std::size_t at) {
  if (line[at] == '>') return at;
  std::size_t mark = at;
  while (mark < line.size() && isASCIIDigit(byteOf(line[mark]))) ++mark;
  const std::string_view marks = mark > at ? ".)" : "-+*";
  if (mark == line.size() || marks.find(line[mark]) == npos) return npos;
  return mark + 1 == line.size() || isBlank(line[mark + 1]) ? mark : npos;
}

bool ParagraphStarts::isStart(std::string_view line) {
  // Each line of a quote has a mark, although they are one paragraph.
  const std::size_t indentation = line.find_first_not_of(" \t>");
  if (indentation == npos) return isFresh_ = true;
  const std::string_view content = line.substr(indentation);
  const bool isFresh = std::exchange(isFresh_, false);
  if (isFresh) {
    lines_ = 0;
    inTable_ = false;
    if (indentation == 0) inList_ = inNumbers_ = false;
  }
  const bool isIndentedText = indentation >= 4 && !inList_;
  const bool isBlock = !isIndentedText && (isHeadingLine(content) || openingFence(content));
  isFresh_ = isBlock;
  const bool isStart = (!isIndentedText && isItem(content)) || isBlock || isFresh || isRow(content);
  lines_ = isStart ? 1 : lines_ + 1;
  return isStart;
}

/// An empty item does not interrupt a paragraph, nor does a number other than 1 outside a list.
bool ParagraphStarts::isItem(std::string_view content) {
  const std::size_t mark = containerMark(content, 0);
  if (mark == npos || content.find_first_not_of(" \t", mark + 1) == npos) return false;
  const bool isNumber = mark > 0;
  if (isNumber && !inNumbers_ && lines_ > 0 && content.substr(0, mark) != "1") return false;
  inList_ = true;
  inNumbers_ = isNumber;
  return true;
}

bool ParagraphStarts::isRow(std::string_view content) {
  if (lines_ == 1 && isUnderlineOfHeader(content)) inTable_ = true;
  return inTable_ && content.find('|') != npos;
}

}  // namespace zephyrdown

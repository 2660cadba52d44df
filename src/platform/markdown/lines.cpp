#include "platform/markdown/lines.h"

#include <algorithm>

namespace zephyrdown {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutTrailingBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(" \t") + 1);
}

bool splitsCRLF(std::string_view text, std::size_t position) {
  return position > 0 && position < text.size() && text[position - 1] == '\r' &&
         text[position] == '\n';
}

/// The offset after the front matter that begins at `begin`; `begin` if there is none.
std::size_t behindFrontMatter(std::string_view text, std::size_t begin) {
  const auto lineAt = [&](std::size_t at) {
    return withoutTrailingBlanks(text.substr(at, lineEnd(text, at) - at));
  };
  if (lineAt(begin) != "---") return begin;
  std::size_t line = nextLine(text, begin);
  if (line == text.size() || isBlankText(lineAt(line))) return begin;
  for (; line < text.size(); line = nextLine(text, line)) {
    if (lineAt(line) == "---" || lineAt(line) == "...") return nextLine(text, line);
  }
  return begin;
}

}  // namespace

std::size_t lineBegin(std::string_view text, std::size_t position) {
  if (splitsCRLF(text, position)) --position;
  while (position > 0 && !isLineBreak(text[position - 1])) --position;
  return position;
}

std::size_t lineEnd(std::string_view text, std::size_t position) {
  if (position >= text.size()) return position;
  if (splitsCRLF(text, position)) --position;
  // In pieces, so that a text with only one of the two line breaks is not searched for the other.
  constexpr std::size_t pieceSize = 128;
  for (; position < text.size(); position += pieceSize) {
    const std::string_view piece = text.substr(position, pieceSize);
    const std::string_view line = piece.substr(0, piece.find('\n'));
    const std::size_t end = std::min(line.find('\r'), line.size());
    if (end < piece.size()) return position + end;
  }
  return text.size();
}

std::size_t behindLineBreak(std::string_view text, std::size_t end) {
  if (end < text.size() && text[end] == '\r') ++end;
  if (end < text.size() && text[end] == '\n') ++end;
  return end;
}

std::size_t nextLine(std::string_view text, std::size_t position) {
  return behindLineBreak(text, lineEnd(text, position));
}

std::size_t previousLineEnd(std::string_view text, std::size_t begin) {
  return splitsCRLF(text, begin - 1) ? begin - 2 : begin - 1;
}

bool isEscaped(std::string_view text, std::size_t position) {
  const std::size_t last = text.substr(0, position).find_last_not_of('\\');
  return (position - (last == npos ? 0 : last + 1)) % 2 == 1;
}

bool isBlankText(std::string_view text) {
  return text.find_first_not_of(" \t") == npos;
}

std::size_t skipBlanks(std::string_view text, std::size_t position) {
  return std::min(text.find_first_not_of(" \t", position), text.size());
}

std::size_t skipBlankLines(std::string_view text, std::size_t begin) {
  while (begin < text.size()) {
    const std::size_t end = lineEnd(text, begin);
    if (!isBlankText(text.substr(begin, end - begin))) break;
    begin = behindLineBreak(text, end);
  }
  return begin;
}

std::size_t contentEnd(std::string_view text) {
  return text.find_last_not_of(" \t\r\n") + 1;
}

std::string_view lineBreakStyle(std::string_view text) {
  const std::size_t end = lineEnd(text, 0);
  if (end == text.size()) return "\n";
  const std::string_view first = text.substr(end, behindLineBreak(text, end) - end);
  // A lone CR inserted before an LF would form one line break with it.
  return first == "\r" && text.find('\n') != npos ? "\n" : first;
}

std::size_t textBegin(std::string_view text) {
  return text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
}

std::size_t bodyBegin(std::string_view text) {
  return behindFrontMatter(text, textBegin(text));
}

}  // namespace zephyrdown

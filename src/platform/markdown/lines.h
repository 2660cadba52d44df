#pragma once

#include <cstddef>
#include <string_view>

#include "platform/markdown/ast.h"

/// The lines of a text. A line ends in LF, CR LF or a lone CR; the last may end in none.
namespace zephyrdown {

/// "Not found", as `std::string_view::find` says it.
inline constexpr std::size_t npos = std::string_view::npos;

/// The first byte of the line that `position` lies in. CR LF belongs to the line it ends.
std::size_t lineBegin(std::string_view text, std::size_t position);

/// The end of the line that `position` lies in, its line break not included.
std::size_t lineEnd(std::string_view text, std::size_t position);

/// The offset behind the line break at `end`, which is a line's end; `end` where there is none.
std::size_t behindLineBreak(std::string_view text, std::size_t end);

/// The offset behind the line that `position` lies in and its line break.
std::size_t nextLine(std::string_view text, std::size_t position);

/// The end of the line before the one that begins at `begin`: the offset of its line break.
/// `begin` must be above 0.
std::size_t previousLineEnd(std::string_view text, std::size_t begin);

/// Spaces and tabs, as Markdown knows blanks.
constexpr bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
constexpr bool isLineBreak(char c) {
  return c == '\n' || c == '\r';
}

/// Whether an odd number of backslashes stands before `position`.
bool isEscaped(std::string_view text, std::size_t position);

bool isBlankText(std::string_view text);
std::size_t skipBlanks(std::string_view text, std::size_t position);

/// The begin of the first line at or behind `begin`, which is a line's begin, that is not blank,
/// or the text's end.
std::size_t skipBlankLines(std::string_view text, std::size_t begin);

/// The end of the last line of `text` that is not blank, its trailing blanks not included; 0 when
/// all are blank.
std::size_t contentEnd(std::string_view text);

/// The line break that the text's first line ends in; LF when there is none, and in place of a
/// lone CR in a text that has others too.
std::string_view lineBreakStyle(std::string_view text);

/// Behind a byte order mark.
std::size_t textBegin(std::string_view text);

/// Where Markdown begins: behind a byte order mark and behind front matter, which is a block of
/// lines between "---" on the very first line and the next "---" or "...". A blank line directly
/// below the first makes it a thematic break instead.
std::size_t bodyBegin(std::string_view text);

}  // namespace zephyrdown

#pragma once

#include <cstddef>
#include <string_view>

#include "platform/markdown/ast.h"

/// Functions on the lines of a text. A line ends in LF, CR LF or a lone CR; the last may have no
/// line break.
namespace zephyrdown {

/// The result of a search that finds nothing, as for std::string_view::find.
inline constexpr std::size_t npos = std::string_view::npos;

/// The start of the line that contains `position`. CR LF belongs to the line it ends.
std::size_t lineBegin(std::string_view text, std::size_t position);

/// The end of the line that contains `position`, before its line break.
std::size_t lineEnd(std::string_view text, std::size_t position);

/// The offset after the line break at `end`, which must be a line's end; `end` if there is none.
std::size_t behindLineBreak(std::string_view text, std::size_t end);

/// The start of the line after the one that contains `position`, or the text's end.
std::size_t nextLine(std::string_view text, std::size_t position);

/// The end of the line before the one that begins at `begin`: the offset of its line break. `begin`
/// must be greater than 0.
std::size_t previousLineEnd(std::string_view text, std::size_t begin);

/// Whether `c` is a space or a tab, the blanks of Markdown.
constexpr bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
constexpr bool isLineBreak(char c) {
  return c == '\n' || c == '\r';
}

/// Whether an odd number of backslashes precedes `position`.
bool isEscaped(std::string_view text, std::size_t position);

/// Whether the text has only blanks.
bool isBlankText(std::string_view text);
/// The offset of the first byte at or after `position` that is not a blank, or the text's end.
std::size_t skipBlanks(std::string_view text, std::size_t position);

/// Start of the first non-blank line at or after `begin`, which must be the start of a line; the
/// text's end if there is none.
std::size_t skipBlankLines(std::string_view text, std::size_t begin);

/// The end of the last non-blank line of `text`, before its trailing blanks; 0 if all are blank.
std::size_t contentEnd(std::string_view text);

/// The line break of the text's first line. LF if it has none, or if it is a lone CR and the text
/// also has LFs.
std::string_view lineBreakStyle(std::string_view text);

/// The offset after a byte order mark, or 0.
std::size_t textBegin(std::string_view text);

/// The start of the Markdown, after a byte order mark and front matter. Front matter is the lines
/// between "---" on the first line and the next "---" or "...". If a blank line follows the first
/// "---", that is a thematic break instead.
std::size_t bodyBegin(std::string_view text);

}  // namespace zephyrdown

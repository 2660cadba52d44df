#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

/// Recognizes the lines that begin, end or underline blocks: CommonMark 0.30, chapters 4 and 5, and
/// tables of GFM, 4.10. `content` is a line without its indentation and its line break.
namespace zephyrdown {

/// "# Title".
bool isHeadingLine(std::string_view content);

/// "===" or "---" below a paragraph.
bool isUnderline(std::string_view content);

/// "---", "* * *".
bool isRule(std::string_view content);

/// The fence of a code block.
struct Fence {
  char mark = 0;  ///< "`" or "~"
  std::size_t length = 0;
  bool operator==(const Fence&) const = default;
};
/// The fence that the line opens, if any.
std::optional<Fence> openingFence(std::string_view content);
/// Whether the line closes a code block with this fence.
bool isClosingFence(std::string_view content, Fence fence);

/// The seven kinds of HTML blocks, by their numbers in CommonMark 0.30, 4.6.
enum class HTMLKind {
  none = 0,
  verbatim = 1,     ///< <pre>, <script>, <style>, <textarea>, up to the closing tag of any of them
  comment = 2,      ///< up to "-->"
  instruction = 3,  ///< "<?", up to "?>"
  declaration = 4,  ///< "<!X", up to ">"
  cdata = 5,        ///< up to "]]>"
  block = 6,        ///< a tag such as <div>, up to a blank line
  tag = 7,  ///< any other tag alone on its line, up to a blank line; cannot interrupt a paragraph
};
/// The kind of HTML block that the line begins, or none.
HTMLKind htmlStart(std::string_view content);
/// Whether the line ends an HTML block of this kind. For `block` and `tag`, a blank line does.
bool endsHTML(std::string_view line, HTMLKind kind);

/// The mark of a list item.
struct ListMark {
  char kind;           ///< "-", "+", "*", "." or ")"
  std::size_t length;  ///< in bytes: 2 for "1."
  bool isFirst;        ///< a bullet or the number 1, which can interrupt a paragraph
};
/// The list mark at the start of the line, if any.
std::optional<ListMark> listMark(std::string_view content);

/// The number of columns of a delimiter row such as "|---|:-:|"; 0 for any other line.
std::size_t columnsOfDelimiterRow(std::string_view content);
/// The number of cells in a table row.
std::size_t columnsOfRow(std::string_view content);

}  // namespace zephyrdown

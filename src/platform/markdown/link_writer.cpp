#include "platform/markdown/ascii.h"
#include "platform/markdown/ast.h"
#include "platform/markdown/file_names.h"

namespace zephyrdown {
namespace {

bool isWordCharacter(std::string_view text, std::size_t at) {
  if (at >= text.size()) return false;
  const unsigned char byte = byteOf(text[at]);
  return byte >= 0x80 || isASCIIDigit(byte) || isASCIILetter(byte);
}

/// Whether the character at `at` could be read as markup inside a label.
bool needsEscape(std::string_view label, std::size_t at) {
  const std::string_view rest = label.substr(at + 1);
  switch (label[at]) {
    case '\\':
    case '`':
    case '*':
    case '[':
    case ']':
    case '<':
    case '~':
    case '|':
    case '@':  // an address
      return true;
    case '_':  // inside a word it is a letter
      return at == 0 || !isWordCharacter(label, at - 1) || !isWordCharacter(label, at + 1);
    case '&':
      return rest.find(';') != std::string_view::npos;
    case ':':
      return rest.starts_with("//");
    case '.':
      return at >= 3 && label.substr(at - 3).starts_with("www");
    case '^':  // a footnote
      return at == 0;
    case '!':
      return rest.starts_with('[');
    default:
      return false;
  }
}

std::string escapedLabel(std::string_view label) {
  std::string result;
  for (std::size_t at = 0; at < label.size(); ++at) {
    const unsigned char byte = byteOf(label[at]);
    if (needsEscape(label, at)) result += '\\';
    result += byte < ' ' || byte == 0x7F ? ' ' : label[at];
  }
  return result;
}

std::string escapedTitle(std::string_view title) {
  std::string result;
  for (const char c : title) {
    if (c == '"' || c == '\\' || c == '&') result += '\\';
    result += byteOf(c) < ' ' ? ' ' : c;
  }
  return result;
}

std::string openLink(std::string_view mark, std::string_view label, std::string_view url) {
  return std::string(mark)
      .append(escapedLabel(label))
      .append("](")
      .append(destinationForFileName(url));
}

}  // namespace

std::string ZDKAST::markdownFile(std::string_view label, std::string_view url, bool preview) {
  constexpr std::string_view kPreview = "<!-- {\"preview\":\"true\"} -->";
  std::string result = openLink("[", label, url) + ")";
  if (preview) result += kPreview;
  return result;
}

std::string ZDKAST::markdownImage(std::string_view label, std::string_view url,
                                  std::string_view title) {
  std::string result = openLink("![", label, url);
  if (!title.empty()) result.append(" \"").append(escapedTitle(title)).append("\"");
  return result + ")";
}

}  // namespace zephyrdown

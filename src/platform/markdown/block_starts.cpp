#include "platform/markdown/block_starts.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/markdown/ascii.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

constexpr std::array<std::string_view, 4> kVerbatimTags = {"pre", "script", "style", "textarea"};

constexpr std::string_view kBlockTags[] = {
    "address",  "article",  "aside",    "base",       "basefont", "blockquote", "body",   "caption",
    "center",   "col",      "colgroup", "dd",         "details",  "dialog",     "dir",    "div",
    "dl",       "dt",       "fieldset", "figcaption", "figure",   "footer",     "form",   "frame",
    "frameset", "h1",       "h2",       "h3",         "h4",       "h5",         "h6",     "head",
    "header",   "hr",       "html",     "iframe",     "legend",   "li",         "link",   "main",
    "menu",     "menuitem", "nav",      "noframes",   "ol",       "optgroup",   "option", "p",
    "param",    "section",  "source",   "summary",    "table",    "tbody",      "td",     "tfoot",
    "th",       "thead",    "title",    "tr",         "track",    "ul"};

constexpr char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool startsWithIgnoringCase(std::string_view text, std::string_view start) {
  return text.size() >= start.size() && std::equal(start.begin(), start.end(), text.begin(),
                                                   [](char a, char b) { return a == lowered(b); });
}

bool containsIgnoringCase(std::string_view text, std::string_view piece) {
  for (std::size_t at = text.find('<'); at != npos; at = text.find('<', at + 1)) {
    if (startsWithIgnoringCase(text.substr(at), piece)) return true;
  }
  return false;
}

bool isNameCharacter(char c) {
  return isASCIILetter(byteOf(c)) || isASCIIDigit(byteOf(c)) || c == '-';
}

/// The tag name at the start: a letter followed by letters, digits and hyphens; empty if there is
/// none.
std::string_view tagName(std::string_view text) {
  if (text.empty() || !isASCIILetter(byteOf(text[0]))) return {};
  const auto end = std::find_if_not(text.begin(), text.end(), isNameCharacter);
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

/// Reads an HTML tag on one line (CommonMark 0.30, 6.6).
class TagReader {
 public:
  explicit TagReader(std::string_view text) : rest_(text) {}

  /// Whether the text is one complete tag and nothing else.
  bool isAlone() {
    if (!take('<')) return false;
    const bool isClosing = take('/');
    const std::string_view name = tagName(rest_);
    if (name.empty()) return false;
    rest_.remove_prefix(name.size());
    while (!isClosing && takeAttribute()) {
    }
    skipBlanks();
    if (!isClosing) take('/');
    if (!take('>')) return false;
    skipBlanks();
    return rest_.empty();
  }

 private:
  bool take(char c) {
    if (!rest_.starts_with(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool skipBlanks() {
    const std::size_t blanks = std::min(rest_.find_first_not_of(" \t"), rest_.size());
    rest_.remove_prefix(blanks);
    return blanks > 0;
  }

  bool takeAttribute() {
    constexpr std::string_view kName =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_:.-";
    const std::string_view before = rest_;
    if (!skipBlanks() || rest_.empty() ||
        kName.substr(0, kName.size() - 2).find(rest_[0]) == npos ||
        isASCIIDigit(byteOf(rest_[0]))) {
      rest_ = before;
      return false;
    }
    rest_.remove_prefix(std::min(rest_.find_first_not_of(kName), rest_.size()));
    return takeValue();
  }

  bool takeValue() {
    const std::string_view before = rest_;
    skipBlanks();
    if (!take('=')) {
      rest_ = before;
      return true;
    }
    skipBlanks();
    for (const char quote : {'"', '\''}) {
      if (!take(quote)) continue;
      const std::size_t end = rest_.find(quote);
      if (end == npos) return false;
      rest_.remove_prefix(end + 1);
      return true;
    }
    const std::size_t end = std::min(rest_.find_first_of(" \t\"'=<>`"), rest_.size());
    rest_.remove_prefix(end);
    return end > 0;
  }

  std::string_view rest_;
};

bool endsTagName(std::string_view rest) {
  return rest.empty() || isBlank(rest[0]) || rest[0] == '>';
}

bool isVerbatimTag(std::string_view content) {
  return std::any_of(kVerbatimTags.begin(), kVerbatimTags.end(), [&](std::string_view name) {
    return startsWithIgnoringCase(content.substr(1), name) &&
           endsTagName(content.substr(1 + name.size()));
  });
}

bool isBlockTag(std::string_view content) {
  content.remove_prefix(content.starts_with("</") ? 2 : 1);
  const std::string_view name = tagName(content);
  constexpr std::size_t kLongest = 10;
  if (name.empty() || name.size() > kLongest) return false;
  std::array<char, kLongest> lower{};
  std::transform(name.begin(), name.end(), lower.begin(), lowered);
  const std::string_view rest = content.substr(name.size());
  return (endsTagName(rest) || rest.starts_with("/>")) &&
         std::binary_search(std::begin(kBlockTags), std::end(kBlockTags),
                            std::string_view(lower.data(), name.size()));
}

/// `content` without the pipes at its ends.
std::string_view insideOfRow(std::string_view content) {
  content = content.substr(0, content.find_last_not_of(" \t\v\f") + 1);
  if (content.starts_with('|')) content.remove_prefix(1);
  if (content.ends_with('|') && !isEscaped(content, content.size() - 1)) content.remove_suffix(1);
  return content;
}

bool isDelimiter(std::string_view cell) {
  const std::size_t begin = cell.find_first_not_of(" \t\v\f");
  if (begin == npos) return false;
  cell = cell.substr(begin, cell.find_last_not_of(" \t\v\f") + 1 - begin);
  if (cell.starts_with(':')) cell.remove_prefix(1);
  if (cell.ends_with(':')) cell.remove_suffix(1);
  return !cell.empty() && cell.find_first_not_of('-') == npos;
}

}  // namespace

bool isHeadingLine(std::string_view content) {
  const std::size_t level = content.find_first_not_of('#');
  if (level == npos) return !content.empty() && content.size() <= 6;
  return level >= 1 && level <= 6 && isBlank(content[level]);
}

bool isUnderline(std::string_view content) {
  if (content.empty() || (content[0] != '=' && content[0] != '-')) return false;
  const std::size_t end = content.find_first_not_of(content[0]);
  return end == npos || isBlankText(content.substr(end));
}

bool isRule(std::string_view content) {
  if (content.empty() || std::string_view("*-_").find(content[0]) == npos) return false;
  const bool isOnlyMarks = std::all_of(content.begin(), content.end(),
                                       [&](char c) { return c == content[0] || isBlank(c); });
  return isOnlyMarks && std::count(content.begin(), content.end(), content[0]) >= 3;
}

std::optional<Fence> openingFence(std::string_view content) {
  if (!content.starts_with("```") && !content.starts_with("~~~")) return std::nullopt;
  const std::size_t length = std::min(content.find_first_not_of(content[0]), content.size());
  if (content[0] == '`' && content.find('`', length) != npos) return std::nullopt;
  return Fence{content[0], length};
}

bool isClosingFence(std::string_view content, Fence fence) {
  const std::size_t length = std::min(content.find_first_not_of(fence.mark), content.size());
  return length >= fence.length && isBlankText(content.substr(length));
}

HTMLKind htmlStart(std::string_view content) {
  if (content.size() < 2 || content[0] != '<') return HTMLKind::none;
  if (content[1] == '?') return HTMLKind::instruction;
  if (content[1] == '!') {
    if (content.starts_with("<!--")) return HTMLKind::comment;
    if (content.starts_with("<![CDATA[")) return HTMLKind::cdata;
    const bool isDeclaration = content.size() > 2 && isASCIILetter(byteOf(content[2]));
    return isDeclaration ? HTMLKind::declaration : HTMLKind::none;
  }
  if (isVerbatimTag(content)) return HTMLKind::verbatim;
  if (isBlockTag(content)) return HTMLKind::block;
  return TagReader(content).isAlone() ? HTMLKind::tag : HTMLKind::none;
}

bool endsHTML(std::string_view line, HTMLKind kind) {
  switch (kind) {
    case HTMLKind::verbatim:
      return containsIgnoringCase(line, "</pre>") || containsIgnoringCase(line, "</script>") ||
             containsIgnoringCase(line, "</style>") || containsIgnoringCase(line, "</textarea>");
    case HTMLKind::comment:
      return line.find("-->") != npos;
    case HTMLKind::instruction:
      return line.find("?>") != npos;
    case HTMLKind::declaration:
      return line.find('>') != npos;
    case HTMLKind::cdata:
      return line.find("]]>") != npos;
    default:
      return isBlankText(line);
  }
}

std::optional<ListMark> listMark(std::string_view content) {
  constexpr std::size_t kMostDigits = 9;
  if (content.empty()) return std::nullopt;
  const auto digitsEnd = std::find_if_not(content.begin(), content.end(),
                                          [](char c) { return isASCIIDigit(byteOf(c)); });
  const auto digits = static_cast<std::size_t>(digitsEnd - content.begin());
  if (digits == content.size() || digits > kMostDigits) return std::nullopt;
  const std::string_view marks = digits > 0 ? ".)" : "-+*";
  if (marks.find(content[digits]) == npos) return std::nullopt;
  const std::size_t length = digits + 1;
  if (length < content.size() && !isBlank(content[length])) return std::nullopt;
  const std::size_t number = content.find_first_not_of('0');
  const bool isOne = content.substr(number, digits - std::min(number, digits)) == "1";
  return ListMark{content[digits], length, digits == 0 || isOne};
}

std::size_t columnsOfDelimiterRow(std::string_view content) {
  if (content.find_first_not_of("|:- \t\v\f") != npos || content.find('|') == npos) return 0;
  std::string_view rest = insideOfRow(content);
  for (std::size_t columns = 1;; ++columns) {
    const std::size_t end = std::min(rest.find('|'), rest.size());
    if (!isDelimiter(rest.substr(0, end))) return 0;
    if (end == rest.size()) return columns;
    rest.remove_prefix(end + 1);
  }
}

std::size_t columnsOfRow(std::string_view content) {
  const std::string_view row = insideOfRow(content);
  std::size_t columns = 1;
  for (std::size_t at = row.find('|'); at != npos; at = row.find('|', at + 1)) {
    if (!isEscaped(row, at)) ++columns;
  }
  return columns;
}

}  // namespace zephyrdown

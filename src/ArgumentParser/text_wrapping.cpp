#include "ArgumentParser/text_wrapping.h"

#include "ArgumentParser/characters.h"

namespace ArgumentParser {

namespace {

constexpr auto npos = std::string_view::npos;

std::string_view firstCharacters(std::string_view text, int count) {
  std::string_view rest = text;
  for (; count > 0 && !rest.empty(); --count) rest.remove_prefix(firstCharacter(rest).size());
  return text.substr(0, text.size() - rest.size());
}

/// The index of the space or line break to cut at (and to drop), npos for no cut. A line break
/// takes precedence over a space, since existing breaks are kept.
std::size_t cut(std::string_view text, int columns) {
  const std::string_view line = firstCharacters(text, columns);
  if (const auto lineBreak = line.rfind('\n'); lineBreak != npos) return lineBreak;
  if (line.size() == text.size()) return npos;
  if (const auto space = line.rfind(' '); space != npos) return space;
  return text.find(' ', line.size());
}

void appendLines(std::string& result, std::string_view lines, int indent) {
  for (;;) {
    const auto lineBreak = lines.find('\n');
    const std::string_view line = lines.substr(0, lineBreak);
    if (!line.empty()) result.append(static_cast<std::size_t>(indent), ' ').append(line);
    if (lineBreak == npos) return;
    result += '\n';
    lines.remove_prefix(lineBreak + 1);
  }
}

}  // namespace

std::string wrapped(std::string_view text, int width, int indent) {
  std::string result;
  const int columns = width - indent;
  if (columns < 1) return result;
  for (;;) {
    const auto end = cut(text, columns);
    appendLines(result, text.substr(0, end), indent);
    if (end == npos) return result;
    result += '\n';
    text.remove_prefix(end + 1);
  }
}

std::string withLaterLinesIndented(std::string_view text, int indent) {
  std::string result;
  for (const char c : text) {
    result += c;
    if (c == '\n') result.append(static_cast<std::size_t>(indent), ' ');
  }
  return result;
}

}  // namespace ArgumentParser

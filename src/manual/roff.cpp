#include "manual/roff.h"

#include <fmt/format.h>

#include "ArgumentParser/characters.h"

namespace tavi::manual {
namespace {

/// The number of a character of two bytes or more in UTF-8.
std::uint32_t codePoint(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character.front());
  std::uint32_t number = lead & (0xFFU >> (character.size() + 1));
  for (const char byte : character.substr(1))
    number = number << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  return number;
}

/// A plain "-" may be printed as a hyphen, a quote as a curly one: neither could be copied to a
/// shell.
std::string escapedCharacter(std::string_view character) {
  if (character.size() > 1) return fmt::format("\\[u{:04X}]", codePoint(character));
  switch (character.front()) {
    case '\\':
      return "\\e";
    case '-':
      return "\\-";
    case '\'':
      return "\\(aq";
    case '`':
      return "\\(ga";
    case '^':
      return "\\(ha";
    case '~':
      return "\\(ti";
    default:
      return std::string(character);
  }
}

/// An argument of a macro.
std::string quoted(std::string_view markup) {
  std::string result = "\"";
  for (const char c : markup) result += c == '"' ? "\\(dq" : std::string(1, c);
  return result + "\"";
}

}  // namespace

std::string Roff::escaped(std::string_view text) {
  std::string result;
  for (const std::string_view character : ArgumentParser::characters(text))
    result += escapedCharacter(character);
  return result;
}

Roff::Roff(std::string_view name, std::string_view version) {
  page_ = fmt::format(".TH {} 1 \"\" {} \"User Commands\"\n", quoted(escaped(name)),
                      quoted(escaped(version)));
  page_ += ".nr HY 0\n.ad l\n";  // no hyphens that are not in the text, and no rivers of blanks
}

/// A line that begins with a dot is a request. (A quote would be one too, and is always escaped.)
void Roff::line(std::string_view markup) {
  if (markup.starts_with('.')) page_ += "\\&";
  page_.append(markup).append("\n");
}

void Roff::section(std::string_view title) {
  page_ += ".SH " + quoted(escaped(title)) + "\n";
}

void Roff::paragraph(std::string_view text) {
  page_ += ".PP\n";
  line(escaped(text));
}

void Roff::item(std::string_view label, std::string_view text) {
  page_ += ".TP\n";
  line(label);
  if (!text.empty()) line(escaped(text));
}

void Roff::verbatim(std::string_view lines) {
  page_ += ".PP\n.nf\n";
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    line(escaped(lines.substr(0, end)));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  page_ += ".fi\n";
}

void Roff::synopsis(std::string_view command, std::string_view arguments) {
  page_ += ".SY " + quoted(escaped(command)) + "\n";
  if (!arguments.empty()) line(arguments);
  page_ += ".YS\n";
}

}  // namespace tavi::manual

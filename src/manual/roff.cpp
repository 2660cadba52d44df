#include "manual/roff.h"

#include <fmt/format.h>

#include <cctype>
#include <utility>

#include "ArgumentParser/characters.h"

namespace tavi::manual {
namespace {

constexpr std::size_t longestLine = 80;  // the limit of mandoc's style check

/// Decodes a character of at least two bytes in UTF-8.
std::uint32_t codePoint(std::string_view character) {
  const auto lead = static_cast<unsigned char>(character.front());
  std::uint32_t number = lead & (0xFFU >> (character.size() + 1));
  for (const char byte : character.substr(1))
    number = number << 6 | (static_cast<unsigned char>(byte) & 0x3FU);
  return number;
}

/// Escapes a character so that the printed page shows exactly this one. A plain "-" may be printed
/// as a hyphen and a quote as a curly one, which a shell does not accept.
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

/// The text of a NAME section. whatis(1) takes it apart by itself and knows few escapes: a dash's
/// name, but not its number.
std::string quiet(std::string_view text) {
  std::string result;
  for (const std::string_view character : ArgumentParser::characters(text)) {
    if (character == "—")
      result += "\\(em";
    else if (character == "-" || character == "'")
      result += character;
    else
      result += escapedCharacter(character);
  }
  return result;
}

/// Quotes markup as an argument of a macro.
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

std::string Roff::file(std::string_view path) {
  std::string result = italic(path);
  for (std::size_t at = result.find('/'); at != std::string::npos; at = result.find('/', at + 1))
    result.insert(at + 1, "\\:");
  return result;
}

Roff::Roff(const PageTitle& title) {
  // The title is in upper case by convention; the NAME section has the name as it is typed.
  std::string name(title.name);
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  page_ = fmt::format(".TH {} {} {} {} {}\n", quoted(escaped(name)), title.section,
                      quoted(title.date), quoted(escaped(title.program)),
                      quoted(title.section == 1 ? "User Commands" : "Conventions"));
  page_ += ".nr HY 0\n.nh\n.ad l\n";  // no hyphenation and no justified lines
}

void Roff::name(std::string_view name, std::string_view abstract) {
  section("NAME");
  line(fmt::format("{} \\- {}", name, quiet(abstract)));
}

void Roff::line(std::string_view markup) {
  while (markup.size() > longestLine) {
    const std::size_t blank = markup.substr(0, longestLine).rfind(' ');
    if (blank == std::string_view::npos) break;
    oneLine(markup.substr(0, blank));
    markup.remove_prefix(blank + 1);
  }
  oneLine(markup);
}

/// Adds one line. roff reads a line that begins with a dot as a request, so "\&" precedes the dot.
/// (A leading quote would be a request too, but quotes are always escaped.)
void Roff::oneLine(std::string_view markup) {
  if (markup.starts_with('.')) page_ += "\\&";
  page_.append(markup).append("\n");
  afterHeading_ = false;
}

void Roff::section(std::string_view title) {
  page_ += ".SH " + quoted(escaped(title)) + "\n";
  afterHeading_ = true;
}

/// Starts a paragraph, unless the heading just before does.
void Roff::beginParagraph() {
  if (!afterHeading_) page_ += ".PP\n";
}

void Roff::paragraph(std::string_view text) {
  beginParagraph();
  line(escaped(text));
}

void Roff::item(std::string_view label, std::string_view text) {
  page_ += ".TP\n";
  oneLine(label);
  if (!text.empty()) line(escaped(text));
}

void Roff::verbatim(std::string_view lines) {
  beginParagraph();
  page_ += ".nf\n";
  while (!lines.empty()) {
    const std::size_t end = std::min(lines.find('\n'), lines.size());
    verbatimLine(lines.substr(0, end));
    lines.remove_prefix(std::min(end + 1, lines.size()));
  }
  page_ += ".fi\n";
}

/// Splits a long line; "\c" at the end of a part joins it to the next.
void Roff::verbatimLine(std::string_view text) {
  std::string piece;
  for (const std::string_view character : ArgumentParser::characters(text)) {
    const std::string markup = escapedCharacter(character);
    if (piece.size() + markup.size() + 2 > longestLine) oneLine(std::exchange(piece, "") + "\\c");
    piece += markup;
  }
  oneLine(piece);
}

void Roff::synopsis(std::string_view command, std::string_view arguments) {
  page_ += ".SY " + quoted(escaped(command)) + "\n";
  if (!arguments.empty()) line(arguments);
  page_ += ".YS\n";
}

}  // namespace tavi::manual

#include "ArgumentParser/characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <numeric>
#include <optional>

namespace ArgumentParser {

namespace {

std::size_t sequenceLength(unsigned char lead) {
  if (lead >= 0xF0) return 4;
  if (lead >= 0xE0) return 3;
  if (lead >= 0xC0) return 2;
  return 1;
}

bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The code point of a control character (below U+0020, U+007F to U+009F) or a line separator.
std::optional<unsigned> controlCode(std::string_view character) {
  const auto last = static_cast<unsigned char>(character.back());
  if (character.size() == 1 && (last < 0x20 || last == 0x7F)) return last;
  if (character.size() == 2 && character.front() == '\xC2' && last < 0xA0) return last;
  if (character == "\u2028" || character == "\u2029") return 0x2000u + (last & 0x3Fu);
  return {};
}

}  // namespace

std::string_view firstCharacter(std::string_view text) {
  if (text.empty()) return text;
  const std::size_t length = sequenceLength(static_cast<unsigned char>(text.front()));
  if (length > text.size()) return text.substr(0, 1);
  const std::string_view rest = text.substr(1, length - 1);
  return text.substr(0, std::ranges::all_of(rest, isContinuation) ? length : 1);
}

std::vector<std::string_view> characters(std::string_view text) {
  std::vector<std::string_view> result;
  while (!text.empty()) {
    result.push_back(firstCharacter(text));
    text.remove_prefix(result.back().size());
  }
  return result;
}

std::string withoutControls(std::string_view text) {
  std::string result;
  for (const std::string_view character : characters(text)) {
    if (character == "\n") {
      result += "\\n";
    } else if (character == "\r") {
      result += "\\r";
    } else if (character == "\t") {
      result += "\\t";
    } else if (const auto code = controlCode(character)) {
      result += fmt::format("\\u{:04x}", *code);
    } else {
      result += character;
    }
  }
  return result;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  for (; !text.empty(); ++count) text.remove_prefix(firstCharacter(text).size());
  return count;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
  const auto from = characters(a);
  const auto to = characters(b);
  std::vector<std::size_t> row(to.size() + 1);  // the current row of the distance matrix
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

}  // namespace ArgumentParser

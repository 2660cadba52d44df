#include "json/json_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <ranges>

#include "platform/text/utf8.h"

namespace tavi {
namespace {

/// What follows the backslash for each byte: 0 for none, 'u' for the form with digits.
using EscapeTable = std::array<char, 256>;

constexpr EscapeTable makeTable(JSONStyle style) {
  EscapeTable table{};
  std::fill_n(table.begin(), 0x20, 'u');
  table['\n'] = 'n';
  table['\r'] = 'r';
  table['\t'] = 't';
  table['"'] = '"';
  table['\\'] = '\\';
  if (style == JSONStyle::wire) table['/'] = '/';
  return table;
}
constexpr EscapeTable commandLineTable = makeTable(JSONStyle::commandLine);
constexpr EscapeTable wireTable = makeTable(JSONStyle::wire);

// Eight bytes are tested at a time (Anderson, "Bit Twiddling Hacks": hasless, haszero). The tests
// see a byte that is not there only above one that is, so "any of these" comes out exact.
constexpr std::uint64_t ones = 0x0101010101010101;
constexpr std::uint64_t highBits = ones * 0x80;
constexpr std::uint64_t below(std::uint64_t word, std::uint8_t limit) {
  return (word - ones * limit) & ~word & highBits;
}
constexpr std::uint64_t equal(std::uint64_t word, char byte) {
  return below(word ^ (ones * static_cast<std::uint8_t>(byte)), 1);
}
template <JSONStyle style>
std::uint64_t escapesIn(std::uint64_t word) {
  std::uint64_t found = below(word, 0x20) | equal(word, '"') | equal(word, '\\');
  if constexpr (style == JSONStyle::wire) found |= equal(word, '/');
  return found;
}

std::size_t firstByte(std::uint64_t found) {
  static_assert(std::endian::native == std::endian::little);
  return static_cast<std::size_t>(std::countr_zero(found)) / 8;
}

/// The length of the run at the start of `text` that stands as it is.
template <JSONStyle style>
std::size_t plainLength(std::string_view text, const EscapeTable& table) {
  std::size_t at = 0;
  for (; at + 8 <= text.size(); at += 8) {
    std::uint64_t word;
    std::memcpy(&word, text.data() + at, 8);
    if (const std::uint64_t found = escapesIn<style>(word)) return at + firstByte(found);
  }
  while (at < text.size() && table[static_cast<unsigned char>(text[at])] == 0) ++at;
  return at;
}

void writeEscape(ByteSink& sink, char byte, char letter) {
  sink.put('\\');
  sink.put(letter);
  if (letter != 'u') return;
  constexpr std::string_view digits = "0123456789abcdef";
  sink.append("00");
  sink.put(digits[static_cast<unsigned char>(byte) >> 4]);
  sink.put(digits[static_cast<unsigned char>(byte) & 15]);
}

template <JSONStyle style>
void writeEscaped(ByteSink& sink, std::string_view text) {
  constexpr const EscapeTable& table = style == JSONStyle::wire ? wireTable : commandLineTable;
  while (true) {
    const std::size_t plain = plainLength<style>(text, table);
    sink.append(text.substr(0, plain));
    if (plain == text.size()) return;
    writeEscape(sink, text[plain], table[static_cast<unsigned char>(text[plain])]);
    text.remove_prefix(plain + 1);
  }
}

}  // namespace

void JSONWriter::key(std::string_view name) {
  string(name);
  sink_.put(':');
  commaDue_ = false;
}

void JSONWriter::string(std::string_view text) {
  beginString();
  if (platform::text::isValidUTF8(text)) {
    stringPart(text);
  } else {
    stringPart(platform::text::replacingInvalidUTF8(text));
  }
  endString();
}

void JSONWriter::stringPart(std::string_view text) {
  if (style_ == JSONStyle::wire) return writeEscaped<JSONStyle::wire>(sink_, text);
  writeEscaped<JSONStyle::commandLine>(sink_, text);
}

void JSONWriter::integer(std::int64_t number) {
  std::array<char, 24> digits;
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  literal({digits.begin(), end});
}

void JSONWriter::number(double number) {
  if (!std::isfinite(number)) return null();
  std::array<char, 32> digits;  // the longest shortest form has 24 characters
  const auto end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  literal({digits.begin(), end});
}

void JSONWriter::value(const JSONValue& value) {
  switch (value.kind()) {
    case JSONValue::Kind::string:
      return string(value.string());
    case JSONValue::Kind::integer:
      return integer(value.integer());
    case JSONValue::Kind::number:
      return number(value.number());
    case JSONValue::Kind::boolean:
      return boolean(value.boolean());
    case JSONValue::Kind::null:
      return null();
    case JSONValue::Kind::object:
      return object(value.object());
    case JSONValue::Kind::array:
      beginArray();
      for (const JSONValue& element : value.array()) this->value(element);
      endArray();
  }
}

void JSONWriter::object(const JSONValue::Object& members) {
  const auto write = [this](const auto& member) {
    key(member.first);
    value(member.second);
  };
  beginObject();
  if (style_ == JSONStyle::wire) {
    // The first to come stays in the map, so from the back the last of a name counts.
    std::map<std::string_view, const JSONValue&> sorted;
    for (const auto& [name, value] : members | std::views::reverse) sorted.emplace(name, value);
    std::ranges::for_each(sorted, write);
  } else {
    std::ranges::for_each(members, write);
  }
  endObject();
}

std::string escapeJSON(std::string_view text) {
  StringSink sink;
  JSONWriter(sink, JSONStyle::commandLine).string(text);
  const std::string quoted = sink.take();
  return quoted.substr(1, quoted.size() - 2);
}

}  // namespace tavi

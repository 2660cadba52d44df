#include "platform/markdown/entities.h"

#include <algorithm>
#include <charconv>

#include "platform/markdown/ascii.h"
#include "platform/markdown/named_entities.h"
#include "platform/text/utf8.h"

namespace zephyrdown {
namespace {

constexpr std::string_view kAlphanumeric =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

bool isScalar(unsigned value) {
  return value > 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

/// The scalar of "8212" or "x2014"; U+FFFD if invalid (CommonMark 0.30, 6.2).
char32_t numericEntity(std::string_view digits) {
  const bool hexadecimal = digits.starts_with('x') || digits.starts_with('X');
  if (hexadecimal) digits.remove_prefix(1);
  unsigned value = 0;
  const auto result =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, hexadecimal ? 16 : 10);
  return result.ec == std::errc{} && isScalar(value) ? char32_t{value} : char32_t{0xFFFD};
}

/// Whether "&#" followed by `digits` and ";" is an entity: at most 7 decimal or 6 hexadecimal
/// digits.
bool isNumber(std::string_view digits) {
  const bool hexadecimal = digits.starts_with('x') || digits.starts_with('X');
  if (hexadecimal) digits.remove_prefix(1);
  const std::string_view known = hexadecimal ? "0123456789ABCDEFabcdef" : "0123456789";
  return !digits.empty() && digits.size() <= (hexadecimal ? 6 : 7) &&
         digits.find_first_not_of(known) == std::string_view::npos;
}

/// The scalars of a name: "2242+338".
std::u32string scalarsOf(std::string_view hexadecimal) {
  std::u32string scalars;
  while (!hexadecimal.empty()) {
    const std::string_view digits = hexadecimal.substr(0, hexadecimal.find('+'));
    unsigned value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    scalars += char32_t{value};
    hexadecimal.remove_prefix(std::min(digits.size() + 1, hexadecimal.size()));
  }
  return scalars;
}

}  // namespace

Entity entityAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kLongest = 50;
  const std::string_view here = text.substr(at, kLongest);
  if (!here.starts_with('&')) return {};
  const bool isNumeric = here.starts_with("&#");
  const std::size_t begin = isNumeric ? 2 : 1;
  const std::size_t end = here.find_first_not_of(kAlphanumeric, begin);
  if (end == std::string_view::npos || here[end] != ';') return {};
  const std::string_view name = here.substr(begin, end - begin);
  if (!isNumeric) {
    std::u32string scalars = scalarsOf(scalarsOfNamedEntity(name));
    return scalars.empty() ? Entity{} : Entity{end + 1, std::move(scalars)};
  }
  return isNumber(name) ? Entity{end + 1, {numericEntity(name)}} : Entity{};
}

Entity entityBefore(std::string_view text, std::size_t end) {
  constexpr std::size_t kLongest = 50;
  if (end == 0 || text[end - 1] != ';') return {};
  const std::size_t begin = text.substr(0, end - 1).find_last_not_of(kAlphanumeric);
  if (begin == std::string_view::npos || end - begin > kLongest) return {};
  const std::size_t at = text[begin] == '#' && begin > 0 ? begin - 1 : begin;
  Entity entity = entityAt(text.substr(0, end), at);
  return at + entity.length == end ? entity : Entity{};
}

void appendEntity(std::string& out, std::string_view entity) {
  const Entity known = entityAt(entity, 0);
  if (known.length == 0) out.append(entity);
  for (const char32_t scalar : known.scalars) platform::text::appendScalar(out, scalar);
}

std::string unescaped(std::string_view raw) {
  std::string result;
  result.reserve(raw.size());
  for (std::size_t at = 0; at < raw.size();) {
    if (raw[at] == '\\' && at + 1 < raw.size() && isASCIIPunctuation(byteOf(raw[at + 1]))) {
      result += raw[at + 1];
      at += 2;
    } else if (const Entity entity = entityAt(raw, at); entity.length > 0) {
      appendEntity(result, raw.substr(at, entity.length));
      at += entity.length;
    } else {
      result += raw[at++];
    }
  }
  return result;
}

}  // namespace zephyrdown

#include "platform/markdown/entities.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "platform/markdown/ascii.h"
#include "platform/text/utf8.h"

namespace zephyrdown {
namespace {

struct NamedEntity {
  std::string_view name;
  char32_t scalar;
};

// The ones that people type. Markdown knows 2,231; the others stay as they are written.
constexpr std::array kNamedEntities = {
    NamedEntity{"amp", '&'},       NamedEntity{"apos", '\''},    NamedEntity{"bull", 0x2022},
    NamedEntity{"cent", 0xA2},     NamedEntity{"copy", 0xA9},    NamedEntity{"darr", 0x2193},
    NamedEntity{"deg", 0xB0},      NamedEntity{"euro", 0x20AC},  NamedEntity{"gt", '>'},
    NamedEntity{"hellip", 0x2026}, NamedEntity{"laquo", 0xAB},   NamedEntity{"larr", 0x2190},
    NamedEntity{"ldquo", 0x201C},  NamedEntity{"lsquo", 0x2018}, NamedEntity{"lt", '<'},
    NamedEntity{"mdash", 0x2014},  NamedEntity{"middot", 0xB7},  NamedEntity{"nbsp", 0xA0},
    NamedEntity{"ndash", 0x2013},  NamedEntity{"para", 0xB6},    NamedEntity{"pound", 0xA3},
    NamedEntity{"quot", '"'},      NamedEntity{"raquo", 0xBB},   NamedEntity{"rarr", 0x2192},
    NamedEntity{"rdquo", 0x201D},  NamedEntity{"reg", 0xAE},     NamedEntity{"rsquo", 0x2019},
    NamedEntity{"sect", 0xA7},     NamedEntity{"shy", 0xAD},     NamedEntity{"szlig", 0xDF},
    NamedEntity{"times", 0xD7},    NamedEntity{"trade", 0x2122}, NamedEntity{"uarr", 0x2191},
    NamedEntity{"yen", 0xA5},
};

bool isScalar(unsigned value) {
  return value > 0 && value <= 0x10FFFF && (value < 0xD800 || value > 0xDFFF);
}

/// `digits`: "8212" or "x2014". U+FFFD for what is no character, as Markdown has it.
char32_t numericEntity(std::string_view digits) {
  const bool hexadecimal = digits.starts_with('x') || digits.starts_with('X');
  if (hexadecimal) digits.remove_prefix(1);
  unsigned value = 0;
  const auto result =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, hexadecimal ? 16 : 10);
  return result.ec == std::errc{} && isScalar(value) ? char32_t{value} : char32_t{0xFFFD};
}

/// The length of the entity at the begin of `text`, or 0.
std::size_t entityLength(std::string_view text) {
  constexpr std::string_view kNameCharacters =
      "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  constexpr std::size_t kLongest = 50;
  const std::size_t name = text.starts_with("&#") ? 2 : 1;
  const std::size_t end = text.substr(0, kLongest).find_first_not_of(kNameCharacters, name);
  if (end == std::string_view::npos || end == name || text[end] != ';') return 0;
  return end + 1;
}

}  // namespace

void appendEntity(std::string& out, std::string_view entity) {
  const std::string_view name = entity.substr(1, entity.size() - 2);
  if (name.starts_with('#')) {
    platform::text::appendScalar(out, numericEntity(name.substr(1)));
    return;
  }
  const auto* known = std::lower_bound(
      kNamedEntities.begin(), kNamedEntities.end(), name,
      [](const NamedEntity& entry, std::string_view wanted) { return entry.name < wanted; });
  if (known == kNamedEntities.end() || known->name != name) {
    out.append(entity);
  } else {
    platform::text::appendScalar(out, known->scalar);
  }
}

std::string unescaped(std::string_view raw) {
  std::string result;
  result.reserve(raw.size());
  for (std::size_t at = 0; at < raw.size();) {
    if (raw[at] == '\\' && at + 1 < raw.size() && isASCIIPunctuation(byteOf(raw[at + 1]))) {
      result += raw[at + 1];
      at += 2;
    } else if (const std::size_t length = raw[at] == '&' ? entityLength(raw.substr(at)) : 0) {
      appendEntity(result, raw.substr(at, length));
      at += length;
    } else {
      result += raw[at++];
    }
  }
  return result;
}

}  // namespace zephyrdown

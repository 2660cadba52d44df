#include "json/json_reader.h"

#include <algorithm>
#include <boost/json/monotonic_resource.hpp>
#include <boost/json/parser.hpp>
#include <charconv>
#include <optional>
#include <string>

namespace tavi {
namespace {

using boost::json::error;
using boost::json::error_code;

constexpr std::size_t kEscapeLength = 6;  // \uXXXX

/// The UTF-16 code unit of the escape at `at`; absent if there is no escape.
std::optional<unsigned> escapedUnit(std::string_view text, std::size_t at) {
  const std::string_view escape = text.substr(std::min(at, text.size()), kEscapeLength);
  if (escape.size() < kEscapeLength || !escape.starts_with("\\u")) return {};
  unsigned unit = 0;
  const auto parsed = std::from_chars(escape.data() + 2, escape.data() + kEscapeLength, unit, 16);
  if (parsed.ptr != escape.data() + kEscapeLength) return {};
  return unit;
}

bool isHighSurrogate(std::optional<unsigned> unit) {
  return unit && *unit >= 0xD800 && *unit < 0xDC00;
}

bool isLowSurrogate(std::optional<unsigned> unit) {
  return unit && *unit >= 0xDC00 && *unit < 0xE000;
}

/// Replaces each escape of a lone surrogate with the escape of U+FFFD.
std::string replacingLoneSurrogates(std::string text) {
  for (std::size_t at = 0; (at = text.find('\\', at)) != std::string::npos;) {
    const auto unit = escapedUnit(text, at);
    if (isHighSurrogate(unit) && isLowSurrogate(escapedUnit(text, at + kEscapeLength))) {
      at += 2 * kEscapeLength;
    } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
      text.replace(at, kEscapeLength, "\\ufffd");
      at += kEscapeLength;
    } else {
      at += 2;  // also skips the escaped byte, which may be another backslash
    }
  }
  return text;
}

boost::json::value parse(std::string_view text, error_code& code, std::size_t& read) {
  boost::json::parse_options options;
  options.max_depth = deepestJSON;
  boost::json::parser parser({}, options);
  // The whole tree is allocated from one arena, which is released with the value.
  parser.reset(boost::json::make_shared_resource<boost::json::monotonic_resource>());
  read = parser.write_some(text.data(), text.size(), code);
  if (!code && read < text.size()) code = error::extra_data;
  if (code) return {};
  return parser.release();
}

}  // namespace

boost::json::value parseJSON(std::string_view text) {
  error_code code;
  std::size_t read = 0;
  // Two variables, since assigning one tree to another would copy it.
  if (boost::json::value value = parse(text, code, read); !code) return value;
  // The parser has no separate error code for a lone surrogate, so try once more without them.
  if (const std::string repaired = replacingLoneSurrogates(std::string(text)); repaired != text) {
    if (boost::json::value value = parse(repaired, code, read); !code) return value;
  }
  const std::string fault =
      "not valid JSON: " + code.message() + " at byte " + std::to_string(read);
  if (code == error::too_deep) throw JSONNestedTooDeep(fault);
  throw JSONParseError(fault);
}

}  // namespace tavi

#include "operations/tag_name.h"

#include <optional>

#include "domain/tag_parser.h"
#include "operations/operation.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

/// Trims hash marks and whitespace, which do not belong to the name.
std::string_view withoutSurroundings(std::string_view text) {
  constexpr std::string_view marks = "# \t\r\n";
  const std::size_t begin = text.find_first_not_of(marks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(marks) + 1 - begin);
}

/// The first character that is not allowed inside a tag; absent if all are.
std::optional<std::string_view> forbiddenCharacter(std::string_view name) {
  for (std::size_t at = 0; at < name.size();) {
    const std::size_t next = platform::text::decodeScalar(name, at).next;
    const std::string_view sign = name.substr(at, next - at);
    if (TagParser::canonicalName("a" + std::string(sign) + "b").empty()) return sign;
    at = next;
  }
  return {};
}

[[noreturn]] void refuse(std::string_view label, const std::string& fault) {
  throw OperationError::invalidInput(std::string(label) + fault);
}

}  // namespace

std::string checkedTagName(std::string_view text, std::string_view label) {
  std::string name = TagParser::canonicalName(text);
  if (!platform::text::trimmingWhitespaceAndNewlines(name).empty()) return name;
  const std::string_view asked = withoutSurroundings(text);
  if (asked.find_first_not_of('/') == std::string_view::npos) refuse(label, " must not be empty");
  const auto sign = forbiddenCharacter(asked);
  if (!sign) refuse(label, " cannot be written as a hashtag: " + std::string(asked));
  const bool isLineBreak = *sign == "\n" || *sign == "\r";
  const std::string shown = isLineBreak ? "a line break" : "'" + std::string(*sign) + "'";
  refuse(label, " must not contain " + shown + ": " + std::string(asked));
}

}  // namespace tavi

#include "platform/markdown/file_names.h"

#include <algorithm>
#include <charconv>

#include "platform/markdown/ascii.h"

namespace zephyrdown {
namespace {

/// Whether it begins with letters, digits, "+", "-" and "." up to a colon (RFC 3986, 3.1).
bool hasScheme(std::string_view destination) {
  const std::size_t colon = destination.find(':');
  if (colon == std::string_view::npos || !isASCIILetter(byteOf(destination.front()))) return false;
  return std::all_of(destination.begin(), destination.begin() + static_cast<std::ptrdiff_t>(colon),
                     [](char c) {
                       return isASCIILetter(byteOf(c)) || isASCIIDigit(byteOf(c)) || c == '+' ||
                              c == '-' || c == '.';
                     });
}

/// Keeps a "%" that is not followed by two hexadecimal digits.
std::string percentDecoded(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const std::string_view digits = text.substr(at + 1, 2);
    const char* end = digits.data() + digits.size();
    unsigned char byte = 0;
    const bool isEscape = text[at] == '%' && digits.size() == 2 &&
                          std::from_chars(digits.data(), end, byte, 16).ptr == end;
    result += isEscape ? static_cast<char>(byte) : text[at];
    if (isEscape) at += 2;
  }
  return result;
}

bool standsForItself(char c) {
  const unsigned char byte = byteOf(c);
  return isASCIILetter(byte) || isASCIIDigit(byte) || byte >= 0x80 ||
         std::string_view("-._~!$'+,;=@").find(c) != std::string_view::npos;
}

}  // namespace

std::string fileNameOfDestination(std::string_view destination) {
  constexpr std::string_view kForbidden("/\0", 2);
  destination = destination.substr(0, destination.find('#'));
  if (destination.empty() || hasScheme(destination)) return {};
  if (destination.find('/') != std::string_view::npos) return {};
  std::string name = percentDecoded(destination);
  if (name.find_first_of(kForbidden) != std::string_view::npos || name == "." || name == "..")
    return {};
  return name;
}

std::string destinationForFileName(std::string_view name) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result;
  result.reserve(name.size());
  for (const char c : name) {
    if (standsForItself(c)) {
      result += c;
      continue;
    }
    const unsigned char byte = byteOf(c);
    result += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
  }
  return result;
}

}  // namespace zephyrdown

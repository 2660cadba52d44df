#pragma once

/// Character classes of ASCII, independent of any locale.
namespace zephyrdown {

constexpr bool isASCIILetter(char32_t c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isASCIIDigit(char32_t c) {
  return c >= '0' && c <= '9';
}

/// The characters that a backslash escapes in Markdown.
constexpr bool isASCIIPunctuation(char32_t c) {
  return (c >= '!' && c <= '/') || (c >= ':' && c <= '@') || (c >= '[' && c <= '`') ||
         (c >= '{' && c <= '~');
}

/// The byte as an unsigned number; a char may be negative.
constexpr unsigned char byteOf(char c) {
  return static_cast<unsigned char>(c);
}

}  // namespace zephyrdown

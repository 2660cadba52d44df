#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Functions on UTF-8 (RFC 3629), by bytes and Unicode scalars. All texts are UTF-8 strings, and
/// positions are byte offsets from the text's start.
namespace platform::text {

/// A half-open range of bytes.
struct ByteRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool operator==(const ByteRange&) const = default;
};

/// Whether `bytes` are well-formed UTF-8: no overlong forms, no surrogates, no scalars above
/// U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// Replaces each ill-formed part by U+FFFD (Unicode 15, 3.9, "substitution of maximal subparts").
std::string replacingInvalidUTF8(std::string_view bytes);

/// Whether all bytes are below 0x80.
bool isASCII(std::string_view bytes);

/// The number of bytes before the first one that is not ASCII.
std::size_t asciiPrefixLength(std::string_view bytes);

/// Whether a byte of well-formed UTF-8 is not the first one of a scalar.
inline bool isContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// A scalar, and the offset after it. An ill-formed part has the value U+FFFD.
struct DecodedScalar {
  char32_t value;
  std::size_t next;
  bool wellFormed = true;
};
/// decodeScalar, for a position with a byte of 0x80 or above.
DecodedScalar decodeMultibyteScalar(std::string_view text, std::size_t position);
/// Decodes the scalar whose first byte is at `position`, which must be less than `text.size()`.
inline DecodedScalar decodeScalar(std::string_view text, std::size_t position) {
  const auto first = static_cast<unsigned char>(text[position]);
  if (first < 0x80) return {first, position + 1, true};
  return decodeMultibyteScalar(text, position);
}

/// The offset of the scalar that ends at `position`, which must be greater than 0 and a scalar's
/// offset or the text's end. Ill-formed text is safe.
std::size_t previousScalar(std::string_view text, std::size_t position);

/// Appends `scalar` to `out` as UTF-8.
void appendScalar(std::string& out, char32_t scalar);

/// Removes white space and line breaks from both ends: Unicode White_Space, and U+200B.
std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

/// Removes blanks from both ends: horizontal white space (general category Zs, and the tab).
std::string_view trimmingBlanks(std::string_view text);

}  // namespace platform::text

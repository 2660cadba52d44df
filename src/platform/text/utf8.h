#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 (RFC 3629) at the level of bytes and scalars. Texts in this system are UTF-8 strings;
/// positions are byte offsets from the text's start.
namespace platform::text {

/// A half-open range of bytes.
struct ByteRange {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool operator==(const ByteRange&) const = default;
};

/// True when `bytes` is well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// `bytes` with each maximal ill-formed part replaced by U+FFFD (Unicode 15, 3.9, "substitution of
/// maximal subparts").
std::string replacingInvalidUTF8(std::string_view bytes);

/// True when every byte is below 0x80.
bool isASCII(std::string_view bytes);

/// The number of bytes before the first one that is 0x80 or above.
std::size_t asciiPrefixLength(std::string_view bytes);

/// The scalar that starts at `position` and the offset behind it. `position` is a scalar's first
/// byte, below `text.size()`. An ill-formed part reads as U+FFFD, with `wellFormed` false.
struct DecodedScalar {
  char32_t value;
  std::size_t next;
  bool wellFormed = true;
};
DecodedScalar decodeMultibyteScalar(std::string_view text, std::size_t position);
inline DecodedScalar decodeScalar(std::string_view text, std::size_t position) {
  const auto first = static_cast<unsigned char>(text[position]);
  if (first < 0x80) return {first, position + 1, true};
  return decodeMultibyteScalar(text, position);
}

/// The first byte of the scalar that ends before `position`, which is above 0 and a scalar's
/// first byte or the text's end. `text` must be valid UTF-8; others are safe.
std::size_t previousScalar(std::string_view text, std::size_t position);

/// Appends `scalar` to `out` as UTF-8.
void appendScalar(std::string& out, char32_t scalar);

/// `text` without the white space and line breaks at both ends: Unicode White_Space, U+200B, and
/// U+0085, U+2028, U+2029 included.
std::string_view trimmingWhitespaceAndNewlines(std::string_view text);

/// `text` without the blanks at both ends: horizontal white space (general category Zs and the
/// tab), no line breaks.
std::string_view trimmingBlanks(std::string_view text);

}  // namespace platform::text

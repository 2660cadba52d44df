#include "platform/text/folding.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "platform/text/comparison_units.h"
#include "platform/text/utf8.h"

namespace platform::text {
namespace {

char lowercasedASCII(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

/// Lower-cases eight letters at once. In no step does a carry reach the next byte, since all bytes
/// are below 0x80.
std::uint64_t eightLowercased(std::uint64_t bytes) {
  constexpr std::uint64_t ones = 0x0101010101010101;
  const std::uint64_t fromA = bytes + (0x80 - 'A') * ones;        // the highest bit: not below 'A'
  const std::uint64_t behindZ = bytes + (0x80 - 'Z' - 1) * ones;  // the highest bit: above 'Z'
  return bytes | ((fromA & ~behindZ & 0x80 * ones) >> 2);
}

/// Whether all scalars are below the first combining mark, U+0300, whose first byte is 0xCC. Such a
/// text is already in NFC.
bool isEasilyComposed(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

std::string lowercasedASCII(std::string_view text) {
  std::string result(text);
  std::size_t at = 0;
  for (std::uint64_t bytes = 0; at + sizeof bytes <= result.size(); at += sizeof bytes) {
    std::memcpy(&bytes, &result[at], sizeof bytes);
    bytes = eightLowercased(bytes);
    std::memcpy(&result[at], &bytes, sizeof bytes);
  }
  for (; at < result.size(); ++at) result[at] = lowercasedASCII(result[at]);
  return result;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
  if (!isASCII(text)) return comparisonForm(text, CaseFolding::full);
  return lowercasedASCII(text);
}

std::string canonicallyComposed(std::string_view text) {
  if (!isValidUTF8(text)) return canonicallyComposed(replacingInvalidUTF8(text));
  if (isEasilyComposed(text)) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const auto* composer = icu::Normalizer2::getNFCInstance(status);
  const auto wide = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  if (composer->quickCheck(wide, status) == UNORM_YES) return std::string(text);
  // Decomposes first without ICU, which takes quadratic time for a long run of marks, even to check
  // whether a text is normalised.
  const std::string decomposed = comparisonForm(text, CaseFolding::none);
  std::string result;
  icu::StringByteSink<std::string> sink(&result);
  composer->normalizeUTF8(0, {decomposed.data(), static_cast<int32_t>(decomposed.size())}, sink,
                          nullptr, status);
  return result;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (isASCII(a) && isASCII(b)) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lowercasedASCII(x) == lowercasedASCII(y); });
  }
  return foldedForSearch(a) == foldedForSearch(b);
}

}  // namespace platform::text

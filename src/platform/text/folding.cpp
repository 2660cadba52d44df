#include "platform/text/folding.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include <algorithm>

#include "platform/text/comparison_units.h"
#include "platform/text/utf8.h"

namespace platform::text {
namespace {

char lowercasedASCII(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

/// Whether all scalars are below the first combining mark, U+0300, whose first byte is 0xCC. Such a
/// text is already in NFC.
bool isEasilyComposed(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) >= 0xCC; });
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
  if (!isASCII(text)) return comparisonForm(text, CaseFolding::full);
  std::string result(text);
  lowercaseASCII(result.data(), result.size());
  return result;
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

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

/// The comparison forms of all units in a row.
std::string comparisonForm(std::string_view text, CaseFolding folding) {
  std::string result;
  result.reserve(text.size() + text.size() / 8);
  ScalarForms forms(folding);
  UnitReader units(text, 0, forms);
  while (units.next()) {
    for (const char32_t scalar : units.scalars()) {
      appendScalar(result, scalar == kIllFormed ? char32_t{0xFFFD} : scalar);
    }
  }
  return result;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
  if (!isASCII(text)) return comparisonForm(text, CaseFolding::full);
  std::string result(text);
  std::transform(text.begin(), text.end(), result.begin(), lowercasedASCII);
  return result;
}

std::string canonicallyComposed(std::string_view text) {
  if (isASCII(text)) return std::string(text);
  UErrorCode status = U_ZERO_ERROR;
  const auto* composer = icu::Normalizer2::getNFCInstance(status);
  if (isValidUTF8(text) &&
      composer->isNormalizedUTF8({text.data(), static_cast<int32_t>(text.size())}, status)) {
    return std::string(text);
  }
  // Decomposed first by our own hand: ICU sorts a long run of marks in quadratic time.
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

#include "platform/text/folding.h"

#include <gtest/gtest.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <string>

#include "platform/text/comparison_units.h"
#include "text_testing.h"

namespace platform::text {
namespace {

std::string normalisedByICU(const icu::Normalizer2* normalizer, const std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  std::string result;
  icu::StringByteSink<std::string> sink(&result);
  normalizer->normalizeUTF8(0, text, sink, nullptr, status);
  return result;
}

const icu::Normalizer2* nfd() {
  UErrorCode status = U_ZERO_ERROR;
  return icu::Normalizer2::getNFDInstance(status);
}

const icu::Normalizer2* nfc() {
  UErrorCode status = U_ZERO_ERROR;
  return icu::Normalizer2::getNFCInstance(status);
}

std::string foldedByICU(const std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  std::string folded;
  icu::StringByteSink<std::string> sink(&folded);
  icu::CaseMap::utf8Fold(0, normalisedByICU(nfd(), text), sink, nullptr, status);
  return normalisedByICU(nfd(), folded);
}

TEST(Folding, IsTheCanonicalCaselessFormOfEveryScalar) {
  forEveryScalar([](char32_t scalar) {
    std::string text;
    appendScalar(text, scalar);
    ASSERT_EQ(foldedForSearch(text), foldedByICU(text)) << scalarName(scalar);
  });
}

TEST(Folding, IsTheFormOfWholeTextsWhateverTheOrderOfTheirMarks) {
  RandomText random(kNastyAlphabet, 2);
  for (int round = 0; round < 20'000; ++round) {
    const std::string text = random.ofLengthUpTo(12);
    ASSERT_EQ(foldedForSearch(text), foldedByICU(text)) << text;
    ASSERT_EQ(canonicallyComposed(text), normalisedByICU(nfc(), text)) << text;
  }
}

// The assumptions of comparison_units.h. A new version of Unicode has to pass this test.
TEST(Folding, NothingReachesFromOneUnitIntoAnother) {
  forEveryScalar([](char32_t scalar) {
    if (attachesToPrevious(scalar)) return;
    ASSERT_TRUE(nfc()->hasBoundaryBefore(static_cast<UChar32>(scalar))) << scalarName(scalar);
    for (const CaseFolding folding : {CaseFolding::none, CaseFolding::full}) {
      const ScalarForms::Form& form = ScalarForms::shared(folding).of(scalar);
      ASSERT_EQ(form.lead.form, 0) << scalarName(scalar);
      ASSERT_EQ(form.lead.decomposed, 0) << scalarName(scalar);
    }
  });
}

TEST(Folding, ReadsIllFormedPartsAsReplacementCharacters) {
  EXPECT_EQ(foldedForSearch("A\xC3Z\xFF"), "a\uFFFDz\uFFFD");
  EXPECT_EQ(canonicallyComposed("A\xC3Z"), "A\uFFFDZ");
}

TEST(Folding, ComparesWithoutCaseButWithAccents) {
  EXPECT_TRUE(equalIgnoringCase("Stra\u00DFe", "STRASSE"));
  EXPECT_TRUE(equalIgnoringCase("\u00C9tude", "e\u0301TUDE"));
  EXPECT_TRUE(equalIgnoringCase("Notes", "nOTES"));
  EXPECT_FALSE(equalIgnoringCase("\u00E9tude", "etude"));
  EXPECT_FALSE(equalIgnoringCase("Notes", "Note"));
}

TEST(Folding, SortsALongRunOfMarksInLinearTime) {
  std::string text = "e";
  for (int i = 0; i < 300'000; ++i) text += "\u0301\u0323";
  EXPECT_EQ(foldedForSearch(text).substr(0, 5), "e\u0323\u0323");
  EXPECT_EQ(canonicallyComposed(text).substr(0, 5), "\u1EB9\u0323");
}

}  // namespace
}  // namespace platform::text

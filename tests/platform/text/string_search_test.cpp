#include "platform/text/string_search.h"

#include <gtest/gtest.h>
#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>

#include <string>
#include <vector>

#include "platform/text/comparison_units.h"
#include "platform/text/lookalikes.h"
#include "support/rounds.h"
#include "text_testing.h"

namespace platform::text {
namespace {

std::string decomposed(const std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  std::string result;
  icu::StringByteSink<std::string> sink(&result);
  icu::Normalizer2::getNFDInstance(status)->normalizeUTF8(0, text, sink, nullptr, status);
  return result;
}

std::string comparisonForm(const std::string& text, CaseFolding folding) {
  if (folding == CaseFolding::none) return decomposed(text);
  UErrorCode status = U_ZERO_ERROR;
  std::string folded;
  icu::StringByteSink<std::string> sink(&folded);
  icu::CaseMap::utf8Fold(0, decomposed(text), sink, nullptr, status);
  return decomposed(folded);
}

/// Whether a match may begin or end here, by the definition.
std::vector<std::size_t> unitBoundaries(const std::string& text) {
  std::vector<std::size_t> result{0};
  for (std::size_t at = 0; at < text.size();) {
    const DecodedScalar scalar = decodeScalar(text, at);
    const auto c = static_cast<UChar32>(scalar.value);
    const auto type = u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE);
    const bool attaches = (U_GET_GC_MASK(c) & U_GC_M_MASK) != 0 || type == U_HST_VOWEL_JAMO ||
                          type == U_HST_TRAILING_JAMO;
    if (at > 0 && !attaches) result.push_back(at);
    at = scalar.next;
  }
  if (!text.empty()) result.push_back(text.size());
  return result;
}

/// A reference implementation: compares every range between two boundaries.
std::vector<ByteRange> naiveMatches(const std::string& needle, const std::string& text,
                                    CaseFolding folding) {
  std::vector<ByteRange> result;
  const std::string wanted = comparisonForm(needle, folding);
  const std::vector<std::size_t> boundaries = unitBoundaries(text);
  for (std::size_t begin = 0; begin + 1 < boundaries.size();) {
    std::size_t end = begin + 1;
    while (end < boundaries.size() &&
           comparisonForm(text.substr(boundaries[begin], boundaries[end] - boundaries[begin]),
                          folding) != wanted) {
      ++end;
    }
    if (end == boundaries.size() || needle.empty()) {
      ++begin;
    } else {
      result.push_back({boundaries[begin], boundaries[end]});
      begin = end;
    }
  }
  return result;
}

void expectAgreement(const std::string& needle, const std::string& text) {
  for (const CaseFolding folding : {CaseFolding::none, CaseFolding::full}) {
    const std::vector<ByteRange> expected = naiveMatches(needle, text, folding);
    const StringSearch search(needle, folding);
    ASSERT_EQ(search.findAll(text), expected)
        << '"' << needle << "\" in \"" << text << "\", folding " << static_cast<int>(folding);
    ASSERT_EQ(search.isIn(text), !expected.empty());
    std::size_t from = 0;
    for (const ByteRange& range : expected) {
      ASSERT_EQ(search.find(text, from), range);
      from = range.end;
    }
    ASSERT_EQ(search.find(text, from), std::nullopt);
  }
}

TEST(StringSearch, AgreesWithItsDefinitionOnRandomTexts) {
  RandomText random(kNastyAlphabet, 3);
  for (int round = 0; round < 3000; ++round) {
    const std::string text = random.ofLengthUpTo(12);
    const std::vector<std::size_t> cuts = unitBoundaries(text);
    const std::size_t begin = cuts[random.below(cuts.size())];
    const std::size_t end = cuts[random.below(cuts.size())];
    if (begin < end) expectAgreement(text.substr(begin, end - begin), text);
    expectAgreement(random.ofLengthUpTo(2), text);
  }
}

// Uses few different scalars, so that matches overlap, are rejected, and are adjacent to
// lookalikes.
TEST(StringSearch, AgreesWithItsDefinitionWhereMatchesCrowd) {
  const std::vector<std::vector<char32_t>> alphabets = {
      {'s', 'S', 0xDF, 0x17F, 0x1E9E},     {'a', 'A', 0x301, 0xE1, 'b'},
      {'f', 'i', 'l', 0xFB00, 0xFB03},     {0x1100, 0x1161, 0x11A8, 0xAC00, 0xAC01},
      {'k', 'K', 0x212A, ' ', ';', 0x37E}, {0x3B1, 0x3B9, 0x345, 0x301, 0x1FB4},
      {'a', 0x200D, 0xAD, 0xFE0F, 0x2764}};
  for (const std::vector<char32_t>& alphabet : alphabets) {
    RandomText random(alphabet, 4);
    for (int round = 0; round < 600; ++round) {
      const std::string needle = random.ofLengthUpTo(4);
      expectAgreement(needle, random.ofLengthUpTo(14));
    }
  }
}

TEST(StringSearch, FindsASCIIAtEveryDistanceFromTheBlocksOfTheScan) {
  constexpr char32_t kAlphabet[] = {'a', 'b', 'A', '@', '`', '\n'};
  RandomText random(kAlphabet, 5);
  const int count = support::rounds(1500);
  for (int round = 0; round < count; ++round) {
    const std::string text = random.ofLengthUpTo(70);
    expectAgreement(random.ofLengthUpTo(5), text);
    if (text.size() > 20) expectAgreement(text.substr(2, random.below(30)), text);
  }
}

TEST(StringSearch, MatchesAsAReaderWould) {
  struct Case {
    std::string_view needle, text;
    std::vector<ByteRange> exact, caseless;
  };
  const std::vector<Case> cases = {
      {"\u00E9", "e\u0301 \u00E9 \u00C9", {{0, 3}, {4, 6}}, {{0, 3}, {4, 6}, {7, 9}}},
      {"e", "\u00E9e\u0301", {}, {}},
      {"STRASSE", "Die Stra\u00DFe", {}, {{4, 11}}},
      {"s", "\u00DF", {}, {}},
      {"\n", "a\r\nb", {{2, 3}}, {{2, 3}}},
      {"ab", "a\u200Db a\u00ADb a\u0001b", {}, {}},
      {"1", "\u2460", {}, {}},
      {"\u304B", "\u30AB", {}, {}},
      {"\u0130", "i\u0307", {}, {{0, 3}}},
      {"aa", "aaa", {{0, 2}}, {{0, 2}}},
      {"\U0001F469", "\U0001F469\u200D\U0001F4BB", {{0, 4}}, {{0, 4}}},
      {"\u2764", "\u2764\uFE0F", {}, {}},
      {"", "abc", {}, {}},
      {"abc", "", {}, {}},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(StringSearch(c.needle, CaseFolding::none).findAll(c.text), c.exact) << c.text;
    EXPECT_EQ(StringSearch(c.needle, CaseFolding::full).findAll(c.text), c.caseless) << c.text;
  }
}

TEST(StringSearch, SearchesIllFormedTextAsItsBytesAre) {
  EXPECT_EQ(StringSearch("b", CaseFolding::full)
                .find("\xC3"
                      "B\xFF"),
            (ByteRange{1, 2}));
  EXPECT_EQ(StringSearch("\u00E9", CaseFolding::full).find("\xE9\u00C9"), (ByteRange{1, 3}));
  EXPECT_FALSE(StringSearch("\uFFFD", CaseFolding::none).isIn("\xFF"));
  EXPECT_FALSE(StringSearch("\xFF", CaseFolding::none).isIn("\xFF\xFE"));
  EXPECT_FALSE(StringSearch("a", CaseFolding::none).find("a", 7));
}

// A new version of Unicode has to pass this test.
TEST(StringSearch, KnowsEveryScalarWhoseFormIsASCII) {
  std::vector<std::tuple<std::string, std::string, std::string>> found;
  forEveryScalar([&](char32_t scalar) {
    std::string source;
    appendScalar(source, scalar);
    const auto form = [&](CaseFolding folding) {
      const ScalarForms::Form& scalars = ScalarForms::shared(folding).of(scalar);
      EXPECT_LE(scalars.length, 2 * source.size()) << scalarName(scalar);
      std::string result;
      for (std::size_t i = 0; i < scalars.length; ++i) appendScalar(result, scalars.scalars[i]);
      return isASCII(result) ? result : "";
    };
    const std::string exact = form(CaseFolding::none);
    const std::string full = form(CaseFolding::full);
    if (scalar >= 0x80 && !(exact.empty() && full.empty())) {
      found.emplace_back(source, full, exact);
      EXPECT_FALSE(attachesToPrevious(scalar)) << scalarName(scalar);
    }
  });
  std::vector<std::tuple<std::string, std::string, std::string>> listed;
  for (const Lookalike& l : kLookalikes) listed.emplace_back(l.scalar, l.form, l.exact);
  EXPECT_EQ(found, listed);
}

std::string repeated(std::string_view part, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += part;
  return result;
}

// Each of these would take hours in quadratic time.
TEST(StringSearch, IsLinearForNeedlesThatAreMadeToHurt) {
  constexpr std::size_t kMany = 200'000;
  struct Case {
    std::string needle, text;
    std::size_t count;
  };
  const std::vector<Case> cases = {
      {repeated("a", kMany), repeated("A", 2 * kMany), 2},
      {repeated("a", kMany) + "b", repeated("a", 3 * kMany), 0},
      {"ab" + repeated("a", kMany), repeated("a", 3 * kMany), 0},
      {repeated("a", kMany) + "ba", repeated("a", 3 * kMany), 0},
      {repeated("s", kMany + 1), repeated("\u00DF", 2 * kMany), 0},
      {"ss", repeated("\u00DF", kMany), kMany},
      {repeated("a", 100), repeated(repeated("a", 100) + "\u0301", kMany / 100), 0},
      {repeated("\u00E9", kMany), repeated("e\u0301", 2 * kMany + 1), 2},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(StringSearch(c.needle, CaseFolding::full).findAll(c.text).size(), c.count)
        << c.needle.substr(0, 8);
  }
}

TEST(ContainsBytes, FindsThemAtEveryPlaceOfTextsOfAnyLength) {
  for (std::size_t length = 1; length < 40; ++length) {
    for (std::size_t at = 0; at + 3 <= length; ++at) {
      std::string text(length, 'a');
      EXPECT_FALSE(containsBytes(text, "\xC3\xA9z"));
      text.replace(at, 3, "\xC3\xA9z");
      EXPECT_TRUE(containsBytes(text, "\xC3\xA9z")) << at << " of " << length;
    }
  }
  EXPECT_TRUE(containsBytes("", ""));
  EXPECT_FALSE(containsBytes("", "a"));
  // A comparison of long parts begins at nearly every place.
  const std::string run(50'000, 'a');
  const std::string part = std::string(500, 'a') + "b" + std::string(500, 'a');
  EXPECT_FALSE(containsBytes(run, part));
  EXPECT_TRUE(containsBytes(run + part, part));
}

}  // namespace
}  // namespace platform::text

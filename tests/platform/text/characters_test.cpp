#include "platform/text/characters.h"

#include <gtest/gtest.h>
#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>

#include <memory>
#include <string>
#include <vector>

#include "text_testing.h"

namespace platform::text {
namespace {

std::vector<std::size_t> boundariesByICU(const std::string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::BreakIterator> iterator(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  UText* utext = utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status);
  iterator->setText(utext, status);
  std::vector<std::size_t> result;
  for (int32_t at = iterator->first(); at != icu::BreakIterator::DONE; at = iterator->next()) {
    result.push_back(static_cast<std::size_t>(at));
  }
  utext_close(utext);
  return result;
}

TEST(Characters, AreTheExtendedGraphemeClustersThatICUFinds) {
  RandomText random(kNastyAlphabet, 1);
  for (int round = 0; round < 4000; ++round) {
    const std::string text = random.ofLengthUpTo(30);
    const std::vector<std::size_t> expected = boundariesByICU(text);
    std::vector<std::size_t> forward{0};
    while (forward.back() < text.size()) {
      forward.push_back(stepForwardCharacters(text, forward.back(), 1));
    }
    std::vector<std::size_t> backward{text.size()};
    while (backward.front() > 0) {
      backward.insert(backward.begin(), stepBackCharacters(text, backward.front(), 1));
    }
    ASSERT_EQ(forward, expected) << text;
    ASSERT_EQ(backward, expected) << text;
    ASSERT_EQ(characterCount(text), expected.size() - 1) << text;
    const std::size_t steps = random.below(expected.size());
    ASSERT_EQ(stepForwardCharacters(text, 0, steps), expected[steps]);
    ASSERT_EQ(stepBackCharacters(text, text.size(), steps), expected[expected.size() - 1 - steps]);
  }
}

TEST(Characters, StepsStopAtTheEnds) {
  EXPECT_EQ(stepBackCharacters("a\r\nb", 4, 2), 1u);
  EXPECT_EQ(stepBackCharacters("abc", 2, 1000), 0u);
  EXPECT_EQ(stepForwardCharacters("abc", 1, 1000), 3u);
  EXPECT_EQ(stepForwardCharacters("abc", 1, 0), 1u);
  EXPECT_EQ(characterCount(""), 0u);
}

TEST(Characters, WalksALongRunOfFlagsInLinearTime) {
  std::string flags;
  for (int i = 0; i < 200'000; ++i) flags += "\U0001F1E9\U0001F1EA";
  EXPECT_EQ(stepBackCharacters(flags, flags.size(), 199'999), 8u);
  EXPECT_EQ(stepForwardCharacters(flags, 0, 199'999), flags.size() - 8);
}

TEST(Characters, ClassesAreThoseOfUnicode) {
  forEveryScalar([](char32_t scalar) {
    const auto c = static_cast<UChar32>(scalar);
    const auto mask = U_GET_GC_MASK(c);
    ASSERT_EQ(isAlphanumeric(scalar), (mask & (U_GC_L_MASK | U_GC_M_MASK | U_GC_N_MASK)) != 0)
        << scalarName(scalar);
    ASSERT_TRUE(extendsCharacter(scalar) || (mask & U_GC_M_MASK) == 0) << scalarName(scalar);
  });
  EXPECT_TRUE(extendsCharacter(0x200D));
  EXPECT_TRUE(extendsCharacter(0xFE0F));
  EXPECT_FALSE(extendsCharacter('e'));
  EXPECT_FALSE(extendsCharacter(0x4E00));
}

}  // namespace
}  // namespace platform::text

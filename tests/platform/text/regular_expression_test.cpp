#include "platform/text/regular_expression.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "text_testing.h"

namespace platform::text {
namespace {

std::vector<ByteRange> matches(std::string_view pattern, std::string_view text,
                               bool caseInsensitive = false) {
  return RegularExpression(pattern, caseInsensitive).matches(text);
}

TEST(RegularExpression, GivesOffsetsIntoTheBytes) {
  EXPECT_EQ(matches("b+", "\u00E9b \U0001F600bb"), (std::vector<ByteRange>{{2, 3}, {8, 10}}));
  EXPECT_EQ(matches("B",
                    "\xFF"
                    "b\xC3z",
                    true),
            (std::vector<ByteRange>{{1, 2}}));
  EXPECT_EQ(matches("x*", "\u00E9x"), (std::vector<ByteRange>{{0, 0}, {2, 3}, {3, 3}}));
  EXPECT_TRUE(matches("z", "abc").empty());
}

TEST(RegularExpression, AnEscapedLiteralMatchesItselfOnly) {
  constexpr char32_t kAlphabet[] = {'\\', 'E', 'Q', '[', ']', '^', '$', '.', '|', '?', '*',  '+',
                                    '(',  ')', '{', '}', '/', '#', ' ', '-', '&', 'a', '\n', 0xE9};
  RandomText random(kAlphabet, 6);
  for (int round = 0; round < 500; ++round) {
    const std::string literal = random.ofLengthUpTo(8) + "!";
    EXPECT_EQ(matches(RegularExpression::escapedPattern(literal), "<" + literal + ">"),
              (std::vector<ByteRange>{{1, literal.size() + 1}}))
        << literal;
  }
}

TEST(RegularExpression, RefusesWhatDoesNotCompileOrCannotEnd) {
  EXPECT_THROW(RegularExpression("a(", false), RegularExpressionError);
  // Each repetition of the group is a state for backtracking, so ICU's stack is the limit.
  EXPECT_THROW(matches("(?:a|b)*c", std::string(20'000'000, 'a')), RegularExpressionError);
}

}  // namespace
}  // namespace platform::text

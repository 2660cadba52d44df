#include "platform/text/utf8.h"

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include <string>
#include <vector>

#include "platform/text/characters.h"
#include "text_testing.h"

namespace platform::text {
namespace {

using namespace std::literals;

TEST(UTF8, EveryScalarSurvivesEncodingAndDecoding) {
  forEveryScalar([](char32_t scalar) {
    std::string text = "x";
    appendScalar(text, scalar);
    ASSERT_TRUE(isValidUTF8(text)) << scalarName(scalar);
    const DecodedScalar decoded = decodeScalar(text, 1);
    ASSERT_EQ(decoded.value, scalar);
    ASSERT_EQ(decoded.next, text.size());
    ASSERT_EQ(previousScalar(text, text.size()), 1u) << scalarName(scalar);
  });
}

TEST(UTF8, ReplacesEachMaximalIllFormedPartOnce) {
  // Unicode 15, tables 3-8 to 3-11, and truncated sequences at the text's end.
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41"sv, "????????A"},
      {"\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41"sv, "????????A"},
      {"\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42"sv, "?????A??B"},
      {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41"sv, "????A"},
      {"caf\xC3"sv, "caf?"},
      {"\xF0\x9F\x98"sv, "?"},
      {"\xF5\x80\x80\x80"sv, "????"},
      {"a\0b\x80"sv, "a\0b?"sv},
  };
  for (const auto& [bytes, expected] : cases) {
    EXPECT_FALSE(isValidUTF8(bytes));
    const std::string replaced = replacingInvalidUTF8(bytes);
    EXPECT_TRUE(isValidUTF8(replaced));
    std::string marked;
    for (std::size_t at = 0; at < replaced.size();) {
      const DecodedScalar scalar = decodeScalar(replaced, at);
      marked.push_back(scalar.value == 0xFFFD ? '?' : static_cast<char>(scalar.value));
      at = scalar.next;
    }
    EXPECT_EQ(marked, expected);
  }
  const std::string valid = "Ünï \u20AC \U0001F600\0 x"s;
  EXPECT_EQ(replacingInvalidUTF8(valid), valid);
}

TEST(UTF8, FindsTheFirstByteThatIsNotASCIIWhereverItStands) {
  for (std::size_t size = 0; size < 100; ++size) {
    std::string text(size, 'x');
    EXPECT_TRUE(isASCII(text));
    for (std::size_t at = 0; at < size; ++at) {
      text[at] = '\x80';
      EXPECT_EQ(asciiPrefixLength(text), at);
      text[at] = '\x7F';
    }
  }
}

TEST(UTF8, StepsBackThroughIllFormedTextWithoutSkippingABoundary) {
  const std::string text = "a\x80\x80\x80\x80\x80\xC3z\xF0\x9F\x98\x80\x80";
  std::vector<std::size_t> forward;
  for (std::size_t at = 0; at < text.size(); at = decodeScalar(text, at).next) {
    forward.push_back(at);
  }
  std::vector<std::size_t> backward;
  for (std::size_t at = text.size(); at > 0;) {
    at = previousScalar(text, at);
    backward.insert(backward.begin(), at);
  }
  EXPECT_EQ(forward, backward);
}

TEST(UTF8, TrimsByTheUnicodeClasses) {
  EXPECT_EQ(trimmingWhitespaceAndNewlines("\u2028\u200B\u3000 a\u00A0b \u0085\r\n"), "a\u00A0b");
  EXPECT_EQ(trimmingWhitespaceAndNewlines(" \t\n"), "");
  EXPECT_EQ(trimmingWhitespaceAndNewlines("\u00E9"), "\u00E9");
  EXPECT_EQ(trimmingBlanks("\t \u2003x\n "), "x\n");
  EXPECT_EQ(trimmingBlanks("\n x \u2028"), "\n x \u2028");
  EXPECT_EQ(trimmingBlanks(""), "");
  forEveryScalar([](char32_t scalar) {
    const auto c = static_cast<UChar32>(scalar);
    ASSERT_EQ(isWhitespace(scalar), u_isUWhiteSpace(c) != 0) << scalarName(scalar);
    std::string text;
    appendScalar(text, scalar);
    const bool blank = scalar == '\t' || u_charType(c) == U_SPACE_SEPARATOR;
    ASSERT_EQ(trimmingBlanks(text).empty(), blank) << scalarName(scalar);
  });
}

}  // namespace
}  // namespace platform::text

#include "ArgumentParser/text_wrapping.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "ArgumentParser/characters.h"

namespace ArgumentParser {
namespace {

TEST(TextWrapping, CutsAtBlanksAndKeepsBreaks) {
  struct Case {
    std::string text;
    int width;
    int indent;
    std::string wrapped;
  };
  for (const auto& [text, width, indent, expected] : std::initializer_list<Case>{
           {"", 10, 0, ""},
           {"one two", 10, 0, "one two"},
           {"one two three", 9, 0, "one two\nthree"},
           // The blank must fit into the width too: "one two" has seven columns, plus the blank.
           {"one two three", 8, 0, "one two\nthree"},
           {"one two three", 7, 0, "one\ntwo\nthree"},
           {"one  two", 5, 0, "one \ntwo"},
           {"one two", 12, 4, "    one two"},
           {"one two three", 12, 4, "    one two\n    three"},
           {"a\n\nb", 10, 2, "  a\n\n  b"},
           {"a b\nc d e f", 5, 0, "a b\nc d\ne f"},
           {"\na", 10, 2, "\n  a"},
           {"a\n", 10, 2, "  a\n"},
           {"uncommonly long", 4, 0, "uncommonly\nlong"},
           {"an uncommonly long", 4, 0, "an\nuncommonly\nlong"},
           {"uncommonly", 4, 2, "  uncommonly"},
           {"uncommonly\nlong word", 6, 2, "  uncommonly\n  long\n  word"},
           {"anything", 4, 4, ""},
           {"ä — ö ü", 6, 0, "ä — ö\nü"},
       })
    EXPECT_EQ(wrapped(text, width, indent), expected) << text << " at " << width;
}

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

TEST(TextWrapping, BreaksNoWordAndOverrunsOnlyForOne) {
  std::mt19937 random(1);
  const auto below = [&random](int end) {
    return static_cast<int>(random() % static_cast<unsigned>(end));
  };
  for (int round = 0; round < 2000; ++round) {
    std::string text;
    for (int i = below(120); i > 0; --i) text += "abcé -    \n"[below(11)];
    const int indent = below(10);
    const int width = indent + 1 + below(30);
    const std::string result = wrapped(text, width, indent);
    ASSERT_EQ(words(result), words(text)) << text;
    std::istringstream lines(result);
    for (std::string line; std::getline(lines, line);) {
      if (line.empty()) continue;
      ASSERT_TRUE(line.starts_with(std::string(static_cast<std::size_t>(indent), ' ')));
      const bool overruns = characterCount(line) > static_cast<std::size_t>(width);
      ASSERT_TRUE(!overruns || words(line).size() == 1) << text;
    }
  }
}

}  // namespace
}  // namespace ArgumentParser

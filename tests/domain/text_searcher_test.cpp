#include "domain/text_searcher.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace tavi {
namespace {

using Found = std::vector<std::pair<std::int64_t, std::string>>;

Found found(std::string_view query, std::string_view text, std::int64_t context,
            std::optional<std::int64_t> limit = std::nullopt) {
  Found result;
  for (const SearchMatch& match : TextSearcher::search(text, query, context, limit)) {
    result.emplace_back(match.byteOffset, match.snippet);
  }
  return result;
}

TEST(TextSearcher, GivesByteOffsetsAndTheTextAsItStands) {
  EXPECT_EQ(found("x", "\u00E9 x", 0), (Found{{3, "x"}}));
  EXPECT_EQ(found("word", "A WORD, a Word", 0), (Found{{2, "WORD"}, {10, "Word"}}));
  EXPECT_EQ(found("strasse", "Stra\u00DFe", 0), (Found{{0, "Stra\u00DFe"}}));
  EXPECT_EQ(found("e", "\u00E9", 0), Found());
  EXPECT_EQ(found("aa", "aaa", 0), (Found{{0, "aa"}}));
  EXPECT_EQ(found("", "abc", 4), Found());
}

TEST(TextSearcher, KeepsContextWithTheOddCharacterBehind) {
  EXPECT_EQ(found("X", "abcXdef", 1), (Found{{3, "Xd"}}));
  EXPECT_EQ(found("X", "abcXdef", 5), (Found{{3, "bcXdef"}}));
  EXPECT_EQ(found("X", "Xdef", 4), (Found{{0, "Xde"}}));
  EXPECT_EQ(found("X", "abX", 120), (Found{{2, "abX"}}));
  EXPECT_EQ(found("X", "aXbXc", 2), (Found{{1, "aXb"}, {3, "bXc"}}));
}

TEST(TextSearcher, CountsContextInCharacters) {
  const std::string family = "\U0001F469\u200D\U0001F469\u200D\U0001F467";
  EXPECT_EQ(found("X", "a" + family + "Xe\u0301b", 2),
            (Found{{1 + static_cast<std::int64_t>(family.size()), family + "Xe\u0301"}}));
  EXPECT_EQ(found("X", "a\r\nX", 2), (Found{{3, "\r\\nX"}}));
}

TEST(TextSearcher, WritesTheSnippetOnOneLine) {
  EXPECT_EQ(found("X", "a\\n\n\tX\r", 20), (Found{{5, "a\\\\n\\n\\tX\r"}}));
}

TEST(TextSearcher, StopsAtTheLimit) {
  EXPECT_EQ(found("a", "aaaa", 0, 2), (Found{{0, "a"}, {1, "a"}}));
  EXPECT_EQ(found("a", "aaaa", 0, 9).size(), 4u);
}

}  // namespace
}  // namespace tavi

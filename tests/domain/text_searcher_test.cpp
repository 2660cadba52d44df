#include "domain/text_searcher.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
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

/// Returns whether the text was read in parts to the end.
bool isSearchedInParts(std::string_view query, std::string_view text, std::int64_t context,
                       std::optional<std::int64_t> limit, std::size_t partSize) {
  bool isWhole = false;
  const auto read = [&](std::size_t begin, std::size_t end) {
    isWhole = isWhole || end - begin > partSize;
    return text.substr(begin, end - begin);
  };
  Found matches;
  for (const SearchMatch& match :
       TextSearcher::search(TextInParts{text.size(), read, partSize}, query, context, limit)) {
    matches.emplace_back(match.byteOffset, match.snippet);
  }
  EXPECT_EQ(matches, found(query, text, context, limit)) << query << " in " << text;
  return !isWhole;
}

/// Texts with little ASCII, or with very long characters, are read as a whole.
TEST(TextSearcher, FindsTheSameInParts) {
  std::string marked = "e";
  for (int mark = 0; mark < 60; ++mark) marked += "\u0301";
  const std::vector<std::string> alphabets[] = {
      {"a", "x", "X ", "word ", "\r\n", "\n", "s", "ss", "k", "\u00E9", "e\u0301", "\u00DF",
       "\U0001F469", "\u200D", "\u212A" /* Kelvin */, "\uD55C"},
      {"\u00E9", "e\u0301", "\u0301", "\xFF", "\U0001F469", "\u200D", "\u212A", "\u00DF"},
      {"a", "x", "X", "s", "ss", "k", "sx", marked},
      {"s", "ss", "x\r\n", "e"},
  };
  const std::vector<std::string> queries = {"x", "ss", "k",      "\u00E9", "e",  "word",
                                            "s", "a",  "\u0301", "x\r\n",  "\n", "\U0001F469"};
  std::mt19937 random(1);
  std::size_t inParts = 0;
  for (std::size_t round = 0; round < 2000 && !HasFailure(); ++round) {
    const std::vector<std::string>& pieces = alphabets[round % std::size(alphabets)];
    std::string text;
    while (text.size() < 2500) text += pieces[random() % pieces.size()];
    const auto limit = random() % 2 == 0 ? std::nullopt : std::optional<std::int64_t>(40);
    const std::string& query = queries[random() % queries.size()];
    inParts += isSearchedInParts(query, text, static_cast<std::int64_t>(random() % 8), limit, 512);
  }
  EXPECT_GT(inParts, 1000U);
  EXPECT_LT(inParts, 2000U);
  for (std::size_t before = 1000; before < 2000 && !HasFailure(); ++before) {
    const std::string text =
        std::string(before, 'y') + marked + marked + marked + "x" + std::string(2000, 'y');
    isSearchedInParts("x", text, 7, std::nullopt, 2048);
  }
}

}  // namespace
}  // namespace tavi

#include "platform/text/string_set_search.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "platform/text/string_search.h"

namespace platform::text {
namespace {

constexpr const char* kPieces[] = {
    "a",  "A",  "ab",           "b",      "é", "e\u0301", "e", "\u0301", "ß", "s", "日",
    "本", "가", "\u1100\u1161", "\u11A8", "K", "\u212A",  " ", "ﬁ",      "f", "i", "\xFF"};

std::string madeUp(std::mt19937& random, std::size_t most) {
  std::string text;
  for (std::size_t n = random() % (most + 1); n > 0; --n)
    text += kPieces[random() % std::size(kPieces)];
  return text;
}

/// A reference implementation, needle by needle: the leftmost match, of those the longest, and so
/// on from its end.
std::size_t countOneByOne(const std::vector<StringSearch>& searches, std::string_view text) {
  std::size_t count = 0;
  for (std::size_t from = 0;; ++count) {
    std::optional<ByteRange> first;
    for (const StringSearch& search : searches) {
      const auto match = search.find(text, from);
      if (!match) continue;
      if (!first || match->begin < first->begin ||
          (match->begin == first->begin && match->end > first->end))
        first = match;
    }
    if (!first) return count;
    from = first->end;
  }
}

TEST(StringSetSearch, FindsAndCountsWhatASearchForEachNeedleDoes) {
  std::mt19937 random(7);
  for (int round = 0; round < 4000; ++round) {
    const CaseFolding folding = round % 3 == 0 ? CaseFolding::none : CaseFolding::full;
    const std::string text = madeUp(random, 14);
    std::vector<std::string> needles;
    for (std::size_t n = random() % 6; n > 0; --n) {
      std::string needle = madeUp(random, 3);
      if (needle.find('\xFF') == std::string::npos) needles.push_back(std::move(needle));
    }
    std::vector<StringSearch> searches;
    std::vector<bool> found;
    for (const std::string& needle : needles) {
      found.push_back(searches.emplace_back(needle, folding).isIn(text));
    }
    const StringSetSearch set(needles, folding);
    EXPECT_EQ(set.found(text), found) << text;
    EXPECT_EQ(set.count(text), countOneByOne(searches, text)) << text;
  }
}

}  // namespace
}  // namespace platform::text

#include "ArgumentParser/characters.h"

#include <gtest/gtest.h>

namespace ArgumentParser {
namespace {

TEST(Characters, AreCodePointsAndStrayBytes) {
  using Texts = std::vector<std::string_view>;
  EXPECT_EQ(characters("aé—𝄞"), (Texts{"a", "é", "—", "𝄞"}));
  EXPECT_EQ(characters("\xC3"
                       "a\x80\xE2\x82"),
            (Texts{"\xC3", "a", "\x80", "\xE2", "\x82"}));
  EXPECT_EQ(characterCount("é—"), 2u);
  EXPECT_EQ(firstCharacter(""), "");
}

TEST(Characters, EditDistanceCountsTheFewestEdits) {
  struct Case {
    std::string_view a, b;
    std::size_t distance;
  };
  for (const auto& [a, b, distance] : std::initializer_list<Case>{
           {"", "", 0},
           {"", "abc", 3},
           {"--titel", "--title", 2},
           {"--xyz", "--xyz", 0},
           {"--limt", "--limit", 1},
           {"kitten", "sitting", 3},
           {"é", "e", 1},
       }) {
    EXPECT_EQ(editDistance(a, b), distance) << a << " " << b;
    EXPECT_EQ(editDistance(b, a), distance) << b << " " << a;
  }
}

}  // namespace
}  // namespace ArgumentParser

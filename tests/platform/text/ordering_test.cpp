#include "platform/text/ordering.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/text/folding.h"

namespace platform::text {
namespace {

TEST(Ordering, ByCodePointsAfterComposition) {
  std::vector<std::string> names = {"\U0001F600", "b", "\uFB01", "a", "B", "e\u0301", "\u00E8"};
  std::sort(names.begin(), names.end(), CodePointLess());
  EXPECT_EQ(names,
            (std::vector<std::string>{"B", "a", "b", "\u00E8", "e\u0301", "\uFB01", "\U0001F600"}));
  EXPECT_EQ(compareByCodePoints("\u00E9", "e\u0301"), std::strong_ordering::equal);
  EXPECT_EQ(compareByCodePoints("a", "a\u0301"), std::strong_ordering::less);
}

TEST(Ordering, ByCodePointsComparesTheComposedForms) {
  const std::vector<std::string> pieces = {"",       "a",      "b",      "e",    "\u0301",
                                           "\u0323", "\u00E9", "\u1EB9", "\xC3", "\u1100\u1161"};
  std::vector<std::string> texts;
  for (const std::string& first : pieces) {
    for (const std::string& second : pieces) {
      texts.push_back(first + second);
      texts.push_back("a" + first + second);
    }
  }
  for (const std::string& a : texts) {
    for (const std::string& b : texts) {
      ASSERT_TRUE(compareByCodePoints(a, b) == (canonicallyComposed(a) <=> canonicallyComposed(b)))
          << testing::PrintToString(a) << testing::PrintToString(b);
    }
  }
}

class Collation : public testing::Test {
 protected:
  static int compare(const char* locale, std::string_view a, std::string_view b) {
    setenv("LC_ALL", locale, 1);
    const LocalizedCaseInsensitiveCollator collator;
    const int result = collator.compare(a, b);
    const int byKeys = collator.sortKey(a).compare(collator.sortKey(b));
    EXPECT_EQ(result < 0, byKeys < 0) << a << ' ' << b;
    EXPECT_EQ(result == 0, byKeys == 0) << a << ' ' << b;
    unsetenv("LC_ALL");
    return result;
  }
};

TEST_F(Collation, LeavesOutCaseAndKeepsAccents) {
  const std::vector<std::string> sorted = {"apple", "\u00C9clair", "eclipse", "Zebra"};
  for (std::size_t i = 1; i < sorted.size(); ++i) {
    EXPECT_LT(compare("en_US.UTF-8", sorted[i - 1], sorted[i]), 0) << sorted[i];
  }
  EXPECT_EQ(compare("en_US.UTF-8", "NOTE", "note"), 0);
  EXPECT_EQ(compare("C", "\u00E9", "E\u0301"), 0);
  EXPECT_LT(compare("C", "e", "\u00E9"), 0);
}

TEST_F(Collation, FollowsTheLocaleOfTheEnvironment) {
  EXPECT_LT(compare("de_DE.UTF-8", "\u00E4", "z"), 0);
  EXPECT_GT(compare("sv_SE.UTF-8", "\u00E4", "z"), 0);
  EXPECT_LT(compare("no such locale", "a", "B"), 0);
}

}  // namespace
}  // namespace platform::text

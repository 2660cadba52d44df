#include "platform/model/search/search_query.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/directives.h"

namespace tavimodel {
namespace {

/// A short form of the tree: groups separated by " & ", conditions by " | ".
std::string shape(const SearchQuery& query) {
  using Kind = SearchCondition::Kind;
  std::string result;
  for (const auto& group : query.groups) {
    if (!result.empty()) result += " & ";
    for (std::size_t i = 0; i < group.size(); ++i) {
      if (i > 0) result += " | ";
      const SearchCondition& condition = group[i];
      if (condition.negated) result += "not ";
      switch (condition.kind) {
        case Kind::term:
          result += "'" + condition.text + "'";
          break;
        case Kind::tag:
          result += "tag:" + condition.text;
          break;
        case Kind::exactTag:
          result += "exact:" + condition.text;
          break;
        case Kind::subtag:
          result += "sub:" + condition.text;
          break;
        default:
          result += "@" + std::to_string(static_cast<int>(condition.kind));
      }
    }
  }
  if (query.titlesOnly) result += " in titles";
  return result;
}

std::string parsed(const std::string& text) {
  return shape(parseSearchQuery(text, 0));
}

TEST(SearchQuery, ReadsEveryFormOfAWord) {
  const struct {
    const char* text;
    const char* tree;
  } cases[] = {
      {"", ""},
      {"  meeting\tnotes ", "'meeting' & 'notes'"},
      {"\"exact  phrase\" x", "'exact  phrase' & 'x'"},
      {R"("say \"hi\" \\ \n")", R"('say "hi" \ \n')"},
      {"\"never closed", "'never closed'"},
      {"\"\" a", "'a'"},
      {"-draft -\"old text\"", "not 'draft' & not 'old text'"},
      {"- [ ]", "'-' & '[' & ']'"},
      {"a or b", "'a' | 'b'"},
      {"a b OR -c d", "'a' & 'b' | not 'c' & 'd'"},
      {"a or b or c", "'a' | 'b' | 'c'"},
      {"or a", "'or' & 'a'"},
      {"a or", "'a' & 'or'"},
      {"a or or", "'a' | 'or'"},
      {"\"or\" x", "'or' & 'x'"},
      {"#work", "tag:work"},
      {"-#work/draft", "not tag:work/draft"},
      {"!#work #*/draft", "exact:work & sub:draft"},
      {"#multi word# x", "tag:multi word & 'x'"},
      {"#one and #two", "tag:one & 'and' & tag:two"},
      {"#", "'#'"},
      {"@title milk", "'milk' in titles"},
      {"me@home @ @1", "'me@home' & '@' & '@1'"},
      {"don't", "'don't'"},
  };
  for (const auto& [text, tree] : cases) EXPECT_EQ(parsed(text), tree) << text;
}

TEST(SearchQuery, NeverTakesAnUnknownDirectiveForAWord) {
  for (const char* text : {"@nosuch", "-@tody", "@last0days", "@lastXdays", "@date(2024-13-01)",
                           "@date(2023-02-29)", "@date()", "@date(24-1-1)", "@cdate(<x)"}) {
    EXPECT_THROW(parseSearchQuery(text, 0), SearchSyntaxError) << text;
  }
  EXPECT_EQ(parsed("\"@nosuch\""), "'@nosuch'");
  try {
    parseSearchQuery("-@CDate", 0);
    ADD_FAILURE();
  } catch (const SearchSyntaxError& error) {
    EXPECT_STREQ(error.what(),
                 "Search directive without a value: @CDate — write it as @cdate(2026-01-31)");
  }
}

TEST(SearchQuery, ReadsEveryDirectiveThatItsDocumentationLists) {
  std::ifstream file(TAVI_SEARCH_PAGE);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  for (std::size_t i = 0; i < conditionKinds.size(); ++i) {
    EXPECT_EQ(static_cast<std::size_t>(conditionKinds[i].kind), i) << "the table's order";
  }
  for (const auto& [word, finds] : searchDirectives()) {
    EXPECT_NE(page.find("| `" + word + "` | " + finds + " |"), std::string::npos) << word;
    EXPECT_NO_THROW(parseSearchQuery(word, 0)) << word;
  }
}

TEST(SearchQuery, RefusesWhatNoReaderAsks) {
  std::string many;
  for (int i = 0; i < 3000; ++i) many += "word ";
  EXPECT_THROW(parseSearchQuery(many, 0), SearchSyntaxError);
  many.clear();
  for (int i = 0; i < 300; ++i) many += "#a ";
  EXPECT_THROW(parseSearchQuery(many, 0), SearchSyntaxError);
  EXPECT_EQ(parseSearchQuery(std::string(1'000'000, 'a'), 0).groups.size(), 1U);
}

class SearchDates : public testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
  }
  void TearDown() override {
    unsetenv("TZ");
    tzset();
  }
  static std::string range(const std::string& text) {
    // Noon UTC on 31 March 2024, a day with 23 hours in Berlin.
    constexpr double now = 1711886400;
    const SearchQuery query = parseSearchQuery(text, now);
    const SearchCondition& condition = query.groups.at(0).at(0);
    const auto shown = [](const std::optional<double>& seconds) {
      if (!seconds) return std::string("-");
      const auto time = static_cast<std::time_t>(*seconds);
      std::tm utc{};
      gmtime_r(&time, &utc);
      char digits[32];
      std::strftime(digits, sizeof digits, "%Y-%m-%dT%H:%M", &utc);
      return std::string(digits);
    };
    return shown(condition.from) + " " + shown(condition.to);
  }
};

TEST_F(SearchDates, AreDaysOfTheLocalTimeZone) {
  EXPECT_EQ(range("@today"), "2024-03-30T23:00 2024-03-31T22:00");
  EXPECT_EQ(range("@yesterday"), "2024-03-29T23:00 2024-03-30T23:00");
  EXPECT_EQ(range("@last1days"), range("@today"));
  EXPECT_EQ(range("@last7days"), "2024-03-24T23:00 2024-03-31T22:00");
  EXPECT_EQ(range("@created2days"), "2024-03-29T23:00 2024-03-31T22:00");
  EXPECT_EQ(range("@date(2024-12-31)"), "2024-12-30T23:00 2024-12-31T23:00");
  EXPECT_EQ(range("@date(<2024-12-31)"), "- 2024-12-30T23:00");
  EXPECT_EQ(range("@cdate(>2024-12-31)"), "2024-12-31T23:00 -");
}

}  // namespace
}  // namespace tavimodel

#include "vault/front_matter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavi::vault {
namespace {

using testing::ElementsAre;

TEST(FrontMatter, IsReadAsNamesAndValues) {
  const std::string text =
      "---\r\nTitle: \"A: b\"\ntags: [a, 'b c']\nlist:\n  - one\n  - two # comment\nnothing:\n"
      "nested: {a: [1]}\nalso: &x 1\nalias: *x\n...\nText\n---\n";
  const auto found = readFrontMatter(text);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->isValid);
  EXPECT_EQ(text.substr(found->end), "Text\n---\n");
  EXPECT_EQ(found->value("title"), "A: b");
  EXPECT_THAT(found->values("tags"), ElementsAre("a", "b c"));
  EXPECT_THAT(found->values("list"), ElementsAre("one", "two"));
  EXPECT_TRUE(found->find("nothing")->values.empty());
  EXPECT_FALSE(found->find("nested")->isUnderstood);
  EXPECT_FALSE(found->find("alias")->isUnderstood);
}

TEST(FrontMatter, IsOnlyWhatStandsBetweenItsMarks) {
  for (const char* text : {"", "text", "---", "---\n\na: b\n---\n", " ---\na: b\n---\n",
                           "---\na: b\n", "--- a\nb: c\n---\n"})
    EXPECT_FALSE(readFrontMatter(text)) << text;
  for (const char* text :
       {"---\ntitle: a: b\n---\n", "---\n- a\n---\n", "---\n[\n---\n", "---\n\"\xFF\": a\n---\n"}) {
    const auto found = readFrontMatter(text);
    ASSERT_TRUE(found) << text;
    EXPECT_FALSE(found->isValid) << text;
  }
}

TEST(FrontMatter, ComesBackAsItWasWritten) {
  const std::vector<std::string> awkward{"a",    "#b c#",        "- x",       "2024",
                                         "null", "\"q\" \\ 'q'", "日本, 語]", "tab\tline\nend",
                                         "x: y", "\x7F",         " ",         ""};
  const auto found =
      readFrontMatter(writeFrontMatter({{.key = "one", .values = {"F-1: x"}},
                                        {.key = "all", .values = awkward, .isList = true}}) +
                      "text");
  ASSERT_TRUE(found && found->isValid);
  EXPECT_EQ(found->value("one"), "F-1: x");
  EXPECT_EQ(found->values("all"), awkward);
}

}  // namespace
}  // namespace tavi::vault

#include <gtest/gtest.h>

#include "platform/markdown/ast.h"

namespace zephyrdown {
namespace {

using Pairs = std::initializer_list<std::pair<const char*, const char*>>;

std::string tagged(const std::string& text, std::string_view name, bool bottom) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.addHashtag(name, bottom));
  return tree.markdown();
}

std::string untagged(const std::string& text, std::string_view name) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.removeHashtag(name));
  return tree.markdown();
}

std::string renamed(const std::string& text, std::string_view from, std::string_view to) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.renameHashtag(from, to));
  return tree.markdown();
}

TEST(AddedTag, GoesUnderTheTitle) {
  for (const auto& [text, result] : Pairs{
           {"", "#new"},
           {"# T", "# T\n#new"},
           {"# T\n\nBody", "# T\n#new\n\nBody"},
           {"# T\r\nBody", "# T\r\n#new\r\n\r\nBody"},
           {"T\n===\nBody", "T\n===\n#new\n\nBody"},
           {"T\n#a\n===\nBody", "T\n#a\n===\n#new\n\nBody"},
           {"#a\n===", "#a\n===\n#new"},
           {"# T\n#a \n\nBody", "# T\n#a #new \n\nBody"},
           {"# T\n\n#a\n\nBody", "# T\n\n#a #new\n\nBody"},
           {"# T\n\n#a", "# T\n\n#a #new"},
           {"# T\n\nBody\n\n#a", "# T\n#new\n\nBody\n\n#a"},
           {"Body", "#new\n\nBody"},
           {"---\nx: y\n---\nBody", "---\nx: y\n---\n#new\n\nBody"},
           {"---\n- a", "#new\n\n---\n- a"},
           {"has #new", "has #new"},
       }) {
    EXPECT_EQ(tagged(text, "new", /*bottom=*/false), result) << text;
  }
}

TEST(AddedTag, GoesOntoTheLastLine) {
  for (const auto& [text, result] : Pairs{
           {"", "#new tag#"},
           {"# T", "# T\n\n#new tag#"},
           {"# T\n\nBody\n", "# T\n\nBody\n\n#new tag#\n"},
           {"# T\n\nBody\n\n#a\n", "# T\n\nBody\n\n#a #new tag#\n"},
           {"# T\n#a", "# T\n#a #new tag#"},
           {"# T\n#a\n\nBody", "# T\n#a\n\nBody\n\n#new tag#"},
           {"Body[^1]\n\n#a\n\n[^1]: note", "Body[^1]\n\n#a #new tag#\n\n[^1]: note"},
           {"Body[^1]\n\n[^1]: note", "Body[^1]\n\n[^1]: note\n\n#new tag#"},
           {"```\ncode", "```\ncode\n```\n\n#new tag#"},
       }) {
    EXPECT_EQ(tagged(text, "new tag", /*bottom=*/true), result) << text;
  }
}

TEST(RemovedTag, TakesItsLineWithItWhenNothingElseIsThere) {
  for (const auto& [text, result] : Pairs{
           {"# T\n#a\n\nBody", "# T\n\nBody"},
           {"# T\n\nBody\n\n#a", "# T\n\nBody"},
           {"# T\n\nBody\n\n#a\n", "# T\n\nBody\n"},
           {"#a #b", "#b"},
           {"#b #a #c", "#b #c"},
           {"#a #a/b `#a` #a", "#a/b `#a`"},
           {"I like #a, really", "I like, really"},
           {"#a\n---\nb: c\n---", "\n---\nb: c\n---"},
           {"www.b.c #a", "www.b.c "},
           {"so **#a** it is", "so it is"},
           {"(#a)", "()"},
           {"#a - b", "\\- b"},
       }) {
    EXPECT_EQ(untagged(text, "a"), result) << text;
  }
}

TEST(RenamedTag, TakesItsChildrenAlong) {
  for (const auto& [text, result] : Pairs{
           {"#a #a/b #ab `#a` #A", "#x y# #x y/b# #ab `#a` #A"},
           {"#a, #a. (#a)", "#x y#, #x y#. (#x y#)"},
           {"#a #b #x y#", "#b #x y#"},
           {"#a #b #a", "#x y# #b"},
           {"so #a and #x y#", "so #x y# and #x y#"},
       }) {
    EXPECT_EQ(renamed(text, "a", "x y"), result) << text;
  }
  EXPECT_EQ(renamed("#x y# #x y/c d# z", "x y", "a"), "#a #a/c d# z");
}

TEST(RenamedTag, LeavesASummaryThatIsKnownUnlessMoreMayChange) {
  const auto isKnown = [](const std::string& text, const char* from, const char* to) {
    const ZDKAST tree = ZDKAST::viewing(text);
    return tree.summaryAfterRenaming(tree.renameHashtag(from, to), from, to).has_value();
  };
  for (const char* text : {"# T\n#a", "# T\n#a/b c #d#\n- [ ] x [y](z/)", "T\n\n*#a* `c`\n[[w]]"}) {
    EXPECT_TRUE(isKnown(text, "a", "new/1")) << text;
    EXPECT_FALSE(isKnown(text, "a", "new one")) << text;
    EXPECT_FALSE(isKnown(text, "a", "new-one")) << text;
  }
  for (const char* text :
       {"#a", "# T #a", "T\n#a\n===", "# T\n#a#", "# T\n[#a]\n\n[#b]: /u", "# T\n#a [[w]]",
        "# T\n#a [f](f.pdf)", "# T\n#a\n[[x]](y/)", "# T\n#a _x_", "# T\n#a\n\n|x|\n|-|\n"}) {
    EXPECT_FALSE(isKnown(text, "a", "b")) << text;
  }
  EXPECT_FALSE(isKnown("# T\n#a" + std::string(10'000, ' '), "a", "b"));
}

}  // namespace
}  // namespace zephyrdown

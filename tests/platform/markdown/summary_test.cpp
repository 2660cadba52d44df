#include <gmock/gmock.h>

#include "platform/markdown/ast.h"

namespace zephyrdown {
namespace {

using testing::ElementsAre;

ZDKTextSummary summaryOf(std::string_view text) {
  return ZDKAST::fromMarkdown(std::string(text)).textSummary();
}

TEST(TextSummary, TakesTheTitleFromTheFirstHeadingElseTheFirstLine) {
  for (const auto& [text, title] : std::initializer_list<std::pair<const char*, const char*>>{
           {"", ""},
           {" \n\t\n", ""},
           {"# Title", "Title"},
           {"# Title #\r\n", "Title"},
           {"\xEF\xBB\xBF# Title", "Title"},
           {"Intro\n\n## Later", "Later"},
           {"Title\nover two\n===\n", "Title over two"},
           {"# *a* **b** `c` [d](e.pdf) ![f](g.png) &amp; \\# <i>h</i>", "a b c d f & # h"},
           {"#\n\nBody", "Body"},
           {"# Caf&eacute; &nesim; &nosuch; &amp", "Café ≂̸ &nosuch; &amp"},
           {"> # Quoted\n\nBody", "Quoted"},
           {"First line\nsecond line", "First line"},
           {"First\rsecond", "First"},
           {"- [ ] buy *milk*\n- eggs", "buy milk"},
           {"1. > quoted", "quoted"},
           {"- [ ] Milk\n  - [ ] Eggs", "Milk"},
           {"- one\n  > two", "one"},
           {"#work\n\nBody", "Body"},
           {"#work #multi word#", "#work #multi word#"},
           {"# Plan #work", "Plan #work"},
           {"---\ntitle: x\n---\nBody", "Body"},
           {"---\n\nBody\n\n---", "Body"},
           {"```\n\n  code\n```", "code"},
           {"<!-- a\nb -->\n\n<div>Hello</div>", "Hello"},
           {"| a | b |\n|---|---|\n| c | d |", "a"},
           {"[[Other note|alias]] and more", "alias and more"},
       }) {
    EXPECT_EQ(summaryOf(text).title, title) << text;
  }
}

TEST(TextSummary, ListsTagsInOrderEachOnce) {
  for (const auto& [text, tags] :
       std::initializer_list<std::pair<const char*, std::vector<std::string>>>{
           {"#b #a #b", {"b", "a"}},
           {"# Title\n#a\n", {"a"}},
           {"**#a** and *#b c#*", {"a", "b c"}},
           {"- [ ] #a\n> #b\n\n| #c | #d |\n|--|--|\n| #e | #f |", {"a", "b", "c", "d", "e", "f"}},
           {"`#a` ``#b`` \\#c &#35;d `x`#e", {}},
           {"    #a\n\n```#b\n#c\n```\n\n~~~\n#d", {}},
           {"http://x.y/#a www.x.y/#b <http://x.y/#c> <m#d@x.y>", {}},
           {"[x](#a) [y](<u #b>) [z #c](d) ![#e](f) [#g][h]\n\n[h]: #i \"#j\"", {}},
           {"<b title=\"#a\">#b</b>\n\n<div>\n#c\n</div>\n\n<!-- #d -->", {"b"}},
           {"[^#a]\n\n[^1]: #b", {"b"}},
           {"[[#a]] [[x|#b]] [[#c/d]]", {}},
           {"---\ntags: #a\n---\n#b", {"b"}},
           {"#a_ and #_b_ and _#c_", {"a_", "_b_", "c"}},
           {"[[options]](#options) [[#a|b]](see #c)", {"c"}},
           // Blocks that begin and end as CommonMark and GFM specify.
           {"<prefix>\n#a\n\n#b", {"b"}},
           {"<preset>#a</preset> <styles>\n\n<scripts>\n\n#b", {"a", "b"}},
           {"<h2>#a</h2>\n\n<textarea>\n\n#b\n</textarea>\n<!doctype\n#c>\n#d", {"d"}},
           {"<!-- a -->\n    #a\n#b", {"b"}},
           {"text\n    ```\n#a\n\n#b", {"a", "b"}},
           {"text\n    <div>\n#a", {"a"}},
           {"| a |\n|---|\n| #b |\n    #c", {"b"}},
           {"| a |\n|---|\n```\n#b\n```\n#c", {"c"}},
           {"> | a |\n> |---|\n> <div>\n> #b\n\n#c", {"c"}},
           {"- ```\n  #a\n```\n#b\n```\n#c", {"c"}},
           {"> ~~~\n    #a\n#b", {"b"}},
           {"```\n#a\n```\t\n#b", {"b"}},
       }) {
    EXPECT_EQ(summaryOf(text).tags, tags) << text;
  }
}

TEST(TextSummary, CountsTaskListItems) {
  const auto summary = summaryOf(
      "- [ ] a\n  * [x] b\n+ [X] c\n1. [ ] d\n2) [x] e\n> - [ ] f\n\n"
      "- [y] no\n-[ ] no\n[ ] no\n\n```\n- [ ] no\n```\n\n    - [ ] no\n");
  EXPECT_EQ(summary.todoIncomplete, 3);
  EXPECT_EQ(summary.todoCompleted, 3);
  const auto belowQuote = summaryOf("- [x] a\n  > q\n- [ ] b\n  - c\n    > q\n    1. [ ] d");
  EXPECT_EQ(belowQuote.todoIncomplete, 2);
  EXPECT_EQ(belowQuote.todoCompleted, 1);
}

// At one offset in 256, the parser takes the last thing that it stored for the start of the item.
TEST(TextSummary, ReadsAnItemOnBelowCodeAtEachOffset) {
  for (std::size_t length = 1; length <= 256; ++length) {
    const std::string title(length, 't');
    EXPECT_EQ(summaryOf(title + "\n\n1. ```\n   a\n   ```\n\n   # b").title, title) << length;
    EXPECT_EQ(summaryOf(title + "\n\n1. a\n\n\n   # b").title, title) << length;
  }
}

TEST(TextSummary, ListsTitlesOfWikiLinks) {
  EXPECT_THAT(summaryOf("[[A]] [[B/Heading]] [[C|alias]] [[A]] [[D\\/E/F]] `[[no]]` [[ G ]] [[/h]]")
                  .wikiLinks,
              ElementsAre("A", "B", "C", "D/E", "G"));
}

TEST(TextSummary, ListsWikiLinksOfAnyLength) {
  const std::string title(150, 't');
  EXPECT_THAT(summaryOf("[[A]] [[" + title + "/H|#x]] [[B]] \\[[" + title + "2]]").wikiLinks,
              ElementsAre("A", title, "B"));
  EXPECT_THAT(summaryOf("#a [[" + title + " #b]] #c").tags, ElementsAre("a", "c"));
}

TEST(TextSummary, TellsOfImagesAndCode) {
  EXPECT_TRUE(summaryOf("![](https://x.y/z.png)").hasImages);
  EXPECT_FALSE(summaryOf("[a](b.png) `![](c.png)`").hasImages);
  for (const char* text : {"`a`", "    a", "```\n```"})
    EXPECT_TRUE(summaryOf(text).hasCode) << text;
  EXPECT_FALSE(summaryOf("\\`a`").hasCode);
}

}  // namespace
}  // namespace zephyrdown

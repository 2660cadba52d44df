#include "platform/markdown/hashtag.h"

#include <gmock/gmock.h>

#include "platform/markdown/ast.h"

namespace zephyrdown {
namespace {

std::vector<std::string> tagsIn(std::string_view text) {
  return ZDKAST::fromMarkdown(std::string(text)).textSummary().tags;
}

TEST(Hashtag, StripsNamesToTheirCanonicalForm) {
  for (const auto& [text, name] : std::initializer_list<std::pair<const char*, const char*>>{
           {"work", "work"},
           {"#work", "work"},
           {" ##work## ", "work"},
           {"\u00A0# work #\u2003", "work"},
           {"#multi word#", "multi word"},
           {"multi \t word", "multi word"},
           {"Work", "Work"},
           {"/a//b /  c d/ ", "a/b/c d"},
           {"/a", "a"},
           {"a//b", "a/b"},
           {"a/", "a"},
           {"C++", "C++"},
           {"2024", "2024"},
           {"e\u0301te\u0301", "\u00E9t\u00E9"},
           {"🎉", "🎉"},
       }) {
    EXPECT_EQ(ZDKHashtag::sanitizeTagName(text), name) << text;
  }
}

TEST(Hashtag, RefusesNamesThatNoHashtagCanHold) {
  for (const char* text : {"", "#", " # ", "/", "a#b", "a\nb", "a\x01", "a*b", "-", "[x]", "\xFF",
                           "a\u2028b", "\u0301x", "&amp;", "me@x.yz"}) {
    EXPECT_EQ(ZDKHashtag::sanitizeTagName(text), std::nullopt) << text;
  }
}

TEST(Hashtag, WritesAClosingMarkWhereTheNameNeedsOne) {
  for (const auto& [name, text] : std::initializer_list<std::pair<const char*, const char*>>{
           {"work", "#work"},
           {"nested/child", "#nested/child"},
           {"multi word", "#multi word#"},
           {"2024", "#2024#"},
           {"1/2-b_c+d", "#1/2-b_c+d"},
           {"v1.2", "#v1.2"},
           {"end.", "#end.#"},
           {"R&D", "#R&D"},
           {"a, b", "#a, b#"},
           {"日本語", "#日本語"},
       }) {
    EXPECT_EQ(ZDKHashtag::hashtagStringForTagName(name), text) << name;
  }
}

TEST(Hashtag, StartsAtTheBeginOfAWord) {
  for (const char* text :
       {"#a", " #a", "x #a", "(#a)", "\"#a\"", "「#a」", "x,#a", "🎉#a", "❤️#a", "> #a", "-\t#a",
        "x\n#a", "。#a", "&quot;#a", "x&nbsp;#a", "\\&eacute;#a"}) {
    EXPECT_THAT(tagsIn(text), testing::ElementsAre("a")) << text;
  }
  for (const char* text : {"x#a", "1#a", "##a", "é#a", "天#a", "/#a", "x:#a", "&#a", "=#a", "# a",
                           "#", "#\ta", "#️⃣ a", "#/a", "&eacute;#a", "&#35;#a", "&num;a"}) {
    EXPECT_THAT(tagsIn(text), testing::IsEmpty()) << text;
  }
}

TEST(Hashtag, EndsWithTheWord) {
  for (const auto& [text, name] : std::initializer_list<std::pair<const char*, const char*>>{
           {"#a.", "a"},       {"#a, b", "a"},      {"#a: b", "a"},
           {"#a!", "a"},       {"#a?", "a"},        {"(#a)", "a"},
           {"#a… b", "a"},     {"#天気、", "天気"}, {"#a/b.", "a/b"},
           {"#a/ b", "a"},     {"#v1.2.", "v1.2"},  {"#a-b", "a-b"},
           {"#a's", "a"},      {"#a\u00A0b", "a"},  {"#a#b", "a"},
           {"#1a", "1a"},      {"#a🎉", "a🎉"},       {"#caf&eacute;, b", "café"},
           {"#a&nbsp;b", "a"}, {"#R&D; b", "R&D"},  {"#a\u104B", "a"},  // Burmese
           {"#a\u17D4", "a"},                                           // Khmer
           {"#a\u0F0D", "a"},                                           // Tibetan
           {"#a\u1803", "a"},                                           // Mongolian
           {"#a\u037E", "a"},                                           // the Greek question mark
       }) {
    EXPECT_THAT(tagsIn(text), testing::ElementsAre(name)) << text;
  }
  for (const char* text : {"#123", "#1.5", "#-", "#_", "#1/2", "#2024-01-01"}) {
    EXPECT_THAT(tagsIn(text), testing::IsEmpty()) << text;
  }
}

TEST(Hashtag, HoldsBlanksUpToAClosingMark) {
  using Names = std::vector<std::string>;
  for (const auto& [text, names] : std::initializer_list<std::pair<const char*, Names>>{
           {"#a b#", {"a b"}},
           {"#a b# c", {"a b"}},
           {"#a b#.", {"a b"}},
           {"#one and #two", {"one", "two"}},
           {"#a b #", {"a"}},
           {"#a b#c", {"a"}},
           {"#a b##", {"a"}},
           {"#a\nb#", {"a"}},
           {"#a `b` c#", {"a"}},
           {"#a# #b c# #d", {"a", "b c", "d"}},
           {"#a b/c d#", {"a b/c d"}},
           {"#12#", {"12"}},
           {"#a &#8212; b#", {"a — b"}},
       }) {
    EXPECT_EQ(tagsIn(text), names) << text;
  }
}

TEST(Hashtag, IsBoundedInLengthAndDepth) {
  const std::string longest(256, 'a');
  std::string deepest = "a";
  for (int level = 1; level < 32; ++level) deepest += "/a";
  for (const std::string& name : {longest, deepest}) {
    EXPECT_EQ(ZDKHashtag::sanitizeTagName(name), name);
    EXPECT_THAT(tagsIn("#" + name), testing::ElementsAre(name));
    for (const std::string& more : {name + "a" + (name == deepest ? "/a" : ""), "b c/" + name}) {
      EXPECT_EQ(ZDKHashtag::sanitizeTagName(more), std::nullopt) << more;
      EXPECT_THAT(tagsIn("#" + more + "#"), testing::Not(testing::Contains(more)));
    }
  }
}

}  // namespace
}  // namespace zephyrdown

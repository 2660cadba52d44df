#include <gtest/gtest.h>

#include "platform/markdown/ast.h"

namespace zephyrdown {
namespace {

std::string appended(const std::string& text, std::string_view inserted) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.appendText(inserted));
  return tree.markdown();
}

std::string prepended(const std::string& text, std::string_view inserted) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.prependText(inserted));
  return tree.markdown();
}

struct Case {
  const char* text;
  const char* inserted;
  const char* result;
};

TEST(AppendedText, GoesAboveTheFoot) {
  for (const auto& [text, inserted, result] : std::initializer_list<Case>{
           {"", "New", "New"},
           {"\n", "New", "New\n\n"},
           {"# T", "New", "# T\n\nNew"},
           {"# T\n", "New", "# T\n\nNew\n"},
           {"# T\n\nBody", "New", "# T\n\nBody\nNew"},
           {"# T\n\nBody\n", "New", "# T\n\nBody\nNew\n"},
           {"# T\n\nBody\n\n", "New", "# T\n\nBody\n\nNew\n\n"},
           {"# T\r\n\r\nBody", "New", "# T\r\n\r\nBody\r\nNew"},
           {"# T\n#a\n\nBody", "New", "# T\n#a\n\nBody\nNew"},
           {"# T\n#a", "New", "# T\n#a\n\nNew"},
           {"#a", "New", "#a\n\nNew"},
           {"---\nx: y\n---", "New", "---\nx: y\n---\nNew"},
           {"# T\n\nBody\n\n#a #b c#", "New", "# T\n\nBody\nNew\n\n#a #b c#"},
           {"# T\n\n#a", "New", "# T\n\nNew\n\n#a"},
           {"Body\n#a\n", "New", "Body\nNew\n#a\n"},
           {"Body[^1]\n\n[^1]: note\n    more\n\n#a", "New",
            "Body[^1]\nNew\n\n[^1]: note\n    more\n\n#a"},
           {"[^1]: note", "New", "New\n\n[^1]: note"},
           {"Body\n\n#a and b", "New", "Body\n\n#a and b\nNew"},
           {"```\n#a", "New", "```\n#a\n```\nNew"},
           {"~~~~\n#a\n\n", "New", "~~~~\n#a\n~~~~\n\nNew\n\n"},
       }) {
    EXPECT_EQ(appended(text, inserted), result) << text;
  }
}

TEST(AppendedText, StaysABlockOfItsOwn) {
  for (const auto& [text, inserted, result] : std::initializer_list<Case>{
           {"- a", "- b", "- a\n- b"},
           {"- a", "New", "- a\n\nNew"},
           {"> a", "New", "> a\n\nNew"},
           {"a", "---", "a\n\n---"},
           {"a", "    code", "a\n\n    code"},
           {"a", "2. b", "a\n\n2. b"},
           {"a", "# H", "a\n# H"},
           {"| a |\n|---|\n| b |", "New", "| a |\n|---|\n| b |\n\nNew"},
           {"| a |\n|---|\n| b |", "| c |", "| a |\n|---|\n| b |\n| c |"},
           {"a\n\n#t", "New\n", "a\nNew\n\n#t"},
           {"a\n\n#t", "```\ncode", "a\n```\ncode\n```\n\n#t"},
           {"a\n#t", "<div>", "a\n\n<div>\n\n#t"},
           {"- a\n- b\n#t", "New", "- a\n- b\n\nNew\n#t"},
           {"> a\n#t", "New", "> a\n\nNew\n#t"},
           {"1. a\n#t", "New", "1. a\n\nNew\n#t"},
           {"- # a\n\n  b", "New", "- # a\n\n  b\n\nNew"},
           {"> a", "> New", "> a\n\n> New"},
           {"| a |\n|-|\n| b |", "New", "| a |\n|-|\n| b |\n\nNew"},
           {"a | b\n-|--", "New", "a | b\n-|--\n\nNew"},
           {"[a]:", "New", "[a]:\n\nNew"},
           {"[a]: /u", "(New)", "[a]: /u\n\n(New)"},
           {"Body\n\n<prefix>", "New", "Body\n\n<prefix>\n\nNew"},
           {"<script>\na", "New", "<script>\na\n</script>\nNew"},
           {"a `b", "c` d", "a `b\n\nc` d"},
           {"a *b", "c* d", "a *b\n\nc* d"},
           {"a [b", "c](d)", "a [b\n\nc](d)"},
           {"1.\n\n    b", "[a]: /u", "1.\n\n    b\n\n[a]: /u"},
           {"a\n|---|\nb\r```\nc", "New", "a\n|---|\nb\r```\nc\n```\nNew"},
           {"#t]*)  #\n1. \\`\n**~~~\nb", "New", "#t]*)  #\n1. \\`\n**~~~\nb\n\nNew"},
           {"a\n1. \n\tb", "New", "a\n1. \n\tb\nNew"},
           {"a\n\n[^1]: b\n- c", "New", "a\n\n[^1]: b\n- c\n\nNew"},
       }) {
    EXPECT_EQ(appended(text, inserted), result) << text;
  }
}

TEST(PrependedText, GoesBelowTheHead) {
  for (const auto& [text, inserted, result] : std::initializer_list<Case>{
           {"", "New", "New"},
           {"# T", "New", "# T\n\nNew"},
           {"# T\n\nBody", "New", "# T\n\nNew\nBody"},
           {"# T\nBody", "New", "# T\nNew\nBody"},
           {"T\n===\n\nBody", "New", "T\n===\n\nNew\nBody"},
           {"# T\n#a\n\nBody", "New", "# T\n#a\n\nNew\nBody"},
           {"# T\n\n#a\n\nBody", "New", "# T\n\n#a\n\nNew\nBody"},
           {"#a\n# T\nBody", "New", "#a\n# T\nNew\nBody"},
           {"# T\n\n#a", "New", "# T\n\nNew\n\n#a"},
           {"# T\n\nBody\n\n#a", "New", "# T\n\nNew\nBody\n\n#a"},
           {"Title\nBody", "New", "Title\nNew\nBody"},
           {"- a\n- b", "New", "- a\n- b\n\nNew"},
           {"> a\n\nBody", "New", "> a\n\nNew\nBody"},
           {"- a\n- b", "- c", "- a\n- b\n- c"},
           {"- a\n- b\n\nBody\n\n#t", "New", "- a\n- b\n\nNew\nBody\n\n#t"},
           {"- a\n\n# T", "New", "New\n- a\n\n# T"},
           {"[a]: /u\n\n- b\n\nc", "New", "[a]: /u\n\n- b\n\nNew\nc"},
           {"[a]: /u\n\n# T", "New", "New\n\n[a]: /u\n\n# T"},
           {"| a |\n|-|\n| b |\n\nc", "New", "| a |\n|-|\n| b |\n\nNew\nc"},
           {"---\nx: y\n---\n# T\n\nBody", "New", "---\nx: y\n---\n# T\n\nNew\nBody"},
           {"# T\n\n    code", "New", "# T\n\nNew\n\n    code"},
           {"# T\n\nBody", "```\ncode", "# T\n\n```\ncode\n```\nBody"},
           {"- a\n\n# T\n\nb", "# H", "- a\n\n# T\n\n# H\n\nb"},
           {"\n_**,*\r[^1]: <**", "- New", "\n_**,*\r[^1]: <**\n- New"},
           {"\xEF\xBB\xBF# T\r\n\r\nBody", "New", "\xEF\xBB\xBF# T\r\n\r\nNew\r\nBody"},
       }) {
    EXPECT_EQ(prepended(text, inserted), result) << text;
  }
}

}  // namespace
}  // namespace zephyrdown

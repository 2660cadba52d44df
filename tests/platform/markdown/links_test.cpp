#include <gmock/gmock.h>

#include "platform/markdown/ast.h"

namespace zephyrdown {
namespace {

/// The source of each file link, and the file that it refers to.
std::vector<std::pair<std::string, std::string>> filesIn(const std::string& text) {
  std::vector<std::pair<std::string, std::string>> files;
  for (const FileLink& file : ZDKAST::fromMarkdown(text).textSummary().files) {
    files.emplace_back(text.substr(file.range.begin, file.range.end - file.range.begin),
                       file.filename);
  }
  return files;
}

std::string removing(const std::string& name, const std::string& text) {
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(tree.removeLinkWithURL(name));
  return tree.markdown();
}

using Files = std::vector<std::pair<std::string, std::string>>;

TEST(FileLinks, AreFoundWithTheirWholeSource) {
  for (const auto& [text, files] : std::initializer_list<std::pair<const char*, Files>>{
           {"see [a](x.pdf) here", {{"[a](x.pdf)", "x.pdf"}}},
           {"![](photo.png)", {{"![](photo.png)", "photo.png"}}},
           {"![*a* b](my%20photo.png \"t ) [x]\").",
            {{"![*a* b](my%20photo.png \"t ) [x]\")", "my photo.png"}}},
           {"**[*a*](<x y.pdf>)**", {{"[*a*](<x y.pdf>)", "x y.pdf"}}},
           {"[![](a.png)](b.pdf)", {{"[![](a.png)](b.pdf)", "b.pdf"}, {"![](a.png)", "a.png"}}},
           {"[](a.pdf)[](b.pdf)", {{"[](a.pdf)", "a.pdf"}, {"[](b.pdf)", "b.pdf"}}},
           {"- [ ] [a](x.pdf)\n> - [x] ![](y.png)",
            {{"[a](x.pdf)", "x.pdf"}, {"![](y.png)", "y.png"}}},
           {"| [a](x.pdf) | ![](y.png) |\n|-|-|\n",
            {{"[a](x.pdf)", "x.pdf"}, {"![](y.png)", "y.png"}}},
           {"> [a\n> b](\n> x.pdf\n> \"t\")", {{"[a\n> b](\n> x.pdf\n> \"t\")", "x.pdf"}}},
           {"[r]: x.pdf\n\n[a][r] [r] [r][] ![][r]",
            {{"[a][r]", "x.pdf"}, {"[r]", "x.pdf"}, {"[r][]", "x.pdf"}, {"![][r]", "x.pdf"}}},
           {"[x]: <![](u)>\n\n![](a\\*b.png)", {{"![](a\\*b.png)", "a*b.png"}}},
           {"[n](n.pdf)<!-- {\"preview\":\"true\"} --> x",
            {{"[n](n.pdf)<!-- {\"preview\":\"true\"} -->", "n.pdf"}}},
           {"[n](n.pdf)<!-- other -->", {{"[n](n.pdf)", "n.pdf"}}},
           {"[p](x.pdf#page=2)", {{"[p](x.pdf#page=2)", "x.pdf"}}},
           {"[&](a&amp;b.pdf) `[x](c.pdf)`", {{"[&](a&amp;b.pdf)", "a&b.pdf"}}},
           {"[a [^1] b](x.pdf)", {{"[a [^1] b](x.pdf)", "x.pdf"}}},
       }) {
    EXPECT_EQ(filesIn(text), files) << text;
  }
}

TEST(FileLinks, AreNotLinksToElsewhere) {
  EXPECT_THAT(filesIn("[a](http://x.y) [b](/c) [d](e/f.pdf) [g](#h) [i]() [j](mailto:k) <l@m.no> "
                      "www.p.q [r](..) [s](a%2Fb) [[t.pdf]] [^1]\n\n[^1]: u.pdf"),
              testing::IsEmpty());
}

TEST(FileLinks, AreRemovedWithTheLineThatHeldNothingElse) {
  EXPECT_EQ(removing("x.pdf", "a [n](x.pdf) b"), "a b");
  EXPECT_EQ(removing("x.pdf", "a [n](x.pdf)"), "a");
  EXPECT_EQ(removing("x.pdf", "a ([n](x.pdf))"), "a ()");
  EXPECT_EQ(removing("x.pdf", "a\n\n![](x.pdf)\n\nb"), "a\n\nb");
  EXPECT_EQ(removing("x.pdf", "a\r\n[n](x.pdf)<!-- {\"preview\":\"true\"} -->\r\nb"), "a\r\nb");
  EXPECT_EQ(removing("x.pdf", "[n](x.pdf)<!--\n<hr>\n[m](y)<!-- {\"preview\":\"true\"} -->"),
            "\\<!--\n<hr>\n[m](y)<!-- {\"preview\":\"true\"} -->");
  EXPECT_EQ(removing("x.pdf", "[n](x.pdf)"), "");
  EXPECT_EQ(removing("x.pdf", "\xEF\xBB\xBF[n](x.pdf)\n"), "\xEF\xBB\xBF");
  EXPECT_EQ(removing("x.pdf", "---\na: b\n---\n[n](x.pdf)\n\nc"), "---\na: b\n---\n\nc");
  EXPECT_EQ(removing("x.pdf", "a\n- [n](x.pdf)\n- b"), "a\n- b");
  EXPECT_EQ(removing("x.pdf", "[n](y.pdf) `[n](x.pdf)`"), "[n](y.pdf) `[n](x.pdf)`");
  EXPECT_EQ(removing("my x.pdf", "a [n](my%20x.pdf) [n](<my x.pdf>)"), "a");
}

TEST(FileLinks, LeaveAnImageOfAnotherFileInTheirLabel) {
  EXPECT_EQ(removing("b.pdf", "x [![](a.png)](b.pdf) y"), "x ![](a.png) y");
  EXPECT_EQ(removing("a.png", "x [![](a.png)](b.pdf) y"), "x [](b.pdf) y");
  EXPECT_EQ(removing("a.png", "x [![](a.png)](a.png) y"), "x y");
}

TEST(FileLinks, AreWrittenAsTheyAreRead) {
  EXPECT_EQ(ZDKAST::markdownFile("my_file.pdf", "my_file.pdf", false),
            "[my_file.pdf](my_file.pdf)");
  EXPECT_EQ(ZDKAST::markdownFile("a [1].pdf", "a [1].pdf", true),
            "[a \\[1\\].pdf](a%20%5B1%5D.pdf)<!-- {\"preview\":\"true\"} -->");
  EXPECT_EQ(ZDKAST::markdownImage("", "Foto 1 (ü).png", ""), "![](Foto%201%20%28ü%29.png)");
  EXPECT_EQ(ZDKAST::markdownImage("a", "b.png", "say \"c\""), "![a](b.png \"say \\\"c\\\"\")");
}

}  // namespace
}  // namespace zephyrdown

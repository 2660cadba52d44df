#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/markdown_properties.h"
#include "platform/text/utf8.h"
#include "support/rounds.h"

namespace zephyrdown {
namespace {

namespace fs = std::filesystem;

ZDKAST parsed(const std::string& text) {
  return ZDKAST::fromMarkdown(text);
}

std::string applied(const std::string& text, const std::vector<ZDKASTOperationResult>& results) {
  ZDKAST tree = parsed(text);
  tree.applyTextOperationResults(results);
  return tree.markdown();
}

class RandomTexts {
 public:
  explicit RandomTexts(unsigned seed) : random_(seed) {}

  std::size_t below(std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random_);
  }

  char byte() { return static_cast<char>(below(256)); }

  template <typename Pieces>
  std::string text(const Pieces& pieces, std::size_t count) {
    std::string result;
    for (std::size_t i = 0; i < count; ++i) result += pieces[below(std::size(pieces))];
    return result;
  }

 private:
  std::mt19937 random_;
};

constexpr const char* kMarkdown[] = {
    "a",          "b",
    " ",          " ",
    "  ",         "    ",
    "\n",         "\n",
    "\n\n",       "\t",
    "#",          "# ",
    "#t",         "#u v#",
    "#w/x",       "*",
    "**",         "_",
    "~~",         "`",
    "```",        "~~~\n",
    "- ",         "1. ",
    "2) ",        "> ",
    "- [ ] ",     "* [x] ",
    "---\n",      "===\n",
    "[",          "]",
    "(",          ")",
    "![",         "](f.pdf)",
    "[[",         "]]",
    "|",          "|---|\n",
    "<",          ">",
    "<b>",        "<!--",
    "-->",        "\\",
    "&amp;",      "http://x.y",
    "[r]",        "[r]: g.png\n",
    "[^1]",       "[^1]: ",
    "\r\n",       "\"",
    "'",          "é",
    "🎉",          ".",
    ",",          "!",
    "![](h.png)", "[](i\\*.pdf)",
    "[x](<j k>)", "\n<div>\n",
    "#\n",        "\r",
    "m@n.op",     "www.q.r ",
};

TEST(Markdown, HoldsItsPropertiesForRandomTexts) {
  RandomTexts random(20250611);
  const int count = support::rounds(3000);
  for (int round = 0; round < count && !HasFailure(); ++round) {
    checkText(random.text(kMarkdown, 1 + random.below(30)));
  }
}

// What is said of a renamed text without parsing it is what parsing it says.
TEST(Markdown, KnowsTheSummaryOfARenamedText) {
  constexpr const char* kNames[] = {"t", "u", "w/x", "longer1"};
  constexpr const char* kTags[] = {" #t ",  " #u",    "#w/x",  "\n#t", "(#u",  "*#t*",
                                   " #t a", " #u/y,", "#w/x#", "~#t~", "\"#u", "&#t"};
  RandomTexts random(20261126);
  int known = 0;
  const int count = support::rounds(20'000);
  for (int round = 0; round < count && !HasFailure(); ++round) {
    std::string text = random.below(8) == 0 ? "" : "T\n\n";
    for (std::size_t i = 1 + random.below(12); i > 0; --i) {
      text += random.below(3) == 0 ? random.text(kTags, 1) : random.text(kMarkdown, 1);
    }
    const ZDKAST tree = parsed(text);
    const std::string from = random.text(kNames, 1), to = random.text(kNames, 1);
    const auto renaming = tree.renameHashtag(from, to);
    const auto summary = tree.summaryAfterRenaming(renaming, from, to);
    if (!summary || renaming.empty()) continue;
    ++known;
    EXPECT_TRUE(*summary == textSummary(applied(text, renaming))) << text << "\n"
                                                                  << from << " to " << to;
  }
  EXPECT_GT(known, count / 20);
}

TEST(Markdown, HoldsItsPropertiesForRandomCharacters) {
  constexpr const char* kMarks[] = {"\n", "\n\n", " ", "#", "- ", "> ",
                                    "*",  "[",    "]", "(", ")",  "`"};
  // The first and the last of several ranges, which differ in spelling, spacing or composition.
  constexpr std::pair<char32_t, char32_t> kRanges[] = {
      {0x01, 0x7F},     {0x80, 0xFF},       {0x300, 0x36F},     {0x590, 0x6FF},
      {0x2000, 0x206F}, {0x3000, 0x30FF},   {0xAC00, 0xAC80},   {0xFE00, 0xFEFF},
      {0xFFF0, 0xFFFF}, {0x1F300, 0x1F6FF}, {0xE0000, 0xE007F}, {0x10FFF0, 0x10FFFF}};
  RandomTexts random(17);
  const int count = support::rounds(1500);
  for (int round = 0; round < count && !HasFailure(); ++round) {
    std::string text;
    for (std::size_t i = 1 + random.below(30); i > 0; --i) {
      const auto [first, last] = kRanges[random.below(std::size(kRanges))];
      if (random.below(3) == 0) {
        text += kMarks[random.below(std::size(kMarks))];
      } else {
        platform::text::appendScalar(text,
                                     first + static_cast<char32_t>(random.below(last - first + 1)));
      }
    }
    checkText(text);
  }
}

TEST(Markdown, ReadsAnyBytes) {
  constexpr std::string_view kMarks("\n#-[]`\0\xFF", 8);
  RandomTexts random(7);
  for (int round = 0; round < 500 && !HasFailure(); ++round) {
    std::string text;
    for (std::size_t i = random.below(40); i > 0; --i) {
      text += random.below(2) == 0 ? random.byte() : kMarks[random.below(kMarks.size())];
    }
    ASSERT_EQ(parsed(text).markdown(), text);
    (void)parsed(text).textSummary();
  }
}

std::string repeated(const std::string& piece, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) text += piece;
  return text;
}

TEST(Markdown, ReadsOnBehindTextsMadeToBeSlow) {
  constexpr std::size_t kMany = 20'000;
  const std::string target(80'000, 'b');
  for (const std::string& text : {
           "[a]: <" + target + ">\n\n" + repeated("[a] ", kMany),
           "[a]: <" + target + "\\*>\n\n" + repeated("[a] ", kMany),
           repeated("|a", kMany) + "|\n" + repeated("|---", kMany) + "|" + repeated("\n|", kMany),
           repeated("[", kMany) + "a" + repeated("](b.pdf)", kMany),
           repeated("![", kMany) + "a" + repeated("](b.png)", kMany),
           repeated("> ", kMany) + "a",
           repeated("- ", kMany) + "a",
           repeated("*a **b ", kMany),
           repeated("[a](b.pdf)<!-- ", kMany),
           repeated("m@n.opwww.q.r ", kMany),
           repeated("[[a]](", kMany),
       }) {
    ZDKAST tree = parsed("#first " + text + "\n\n#last");
    EXPECT_EQ(tree.textSummary().tags.back(), "last") << text.substr(0, 30);
    tree.applyTextOperationResults(tree.renameHashtag("last", "x y"));
    tree.applyTextOperationResults(tree.appendText("end"));
    EXPECT_TRUE(tree.markdown().ends_with("\nend\n\n#x y#")) << text.substr(0, 30);
  }
}

TEST(Markdown, HoldsItsPropertiesForTextsThatOthersWrote) {
  constexpr std::size_t kLargest = 60'000;
  std::size_t read = 0;
  for (const auto& file : fs::recursive_directory_iterator(TAVI_MARKDOWN_PACKAGE)) {
    if (file.path().extension() != ".md") continue;
    std::ifstream stream(file.path(), std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    SCOPED_TRACE(file.path());
    ++read;
    ASSERT_EQ(parsed(text).markdown(), text);
    if (text.size() < kLargest) checkText(text);
  }
  EXPECT_GT(read, 50U) << "scripts/setup --test brings them";
}

TEST(Hashtag, IsReadBackAsItsName) {
  constexpr const char* kPieces[] = {
      "a",  "B",    "1",      " ",   "/",      "-", "_", ".", ",", "é",      "e\u0301",
      "天", "🎉",    "❤️", "'",   "&",      ";", "!", "(", ")", "\u00A0", "@",
      "w",  "www.", "+",      "amp", "\u200B", "x", ":", "#", "*", "\u2014"};
  RandomTexts random(11);
  int written = 0;
  for (int round = 0; round < 5000; ++round) {
    const auto name = ZDKHashtag::sanitizeTagName(random.text(kPieces, 1 + random.below(7)));
    const auto other = ZDKHashtag::sanitizeTagName(random.text(kPieces, 1 + random.below(7)));
    if (!name || !other || *name == *other) continue;
    ++written;
    ASSERT_EQ(ZDKHashtag::sanitizeTagName(*name), name);
    const auto hashtag = ZDKHashtag::hashtagStringForTagName(*name);
    const auto second = ZDKHashtag::hashtagStringForTagName(*other);
    ASSERT_TRUE(hashtag && second) << *name;
    ASSERT_EQ(ZDKHashtag::sanitizeTagName(*hashtag), name);
    using Names = std::vector<std::string>;
    ASSERT_EQ(parsed(*hashtag).textSummary().tags, Names{*name}) << *hashtag;
    ASSERT_EQ(parsed("a\n" + *hashtag + "\n---").textSummary().tags, Names{*name}) << *hashtag;
    ASSERT_EQ(parsed(*hashtag + " " + *second).textSummary().tags, (Names{*name, *other}))
        << *hashtag << " " << *second;
  }
  ASSERT_GT(written, 1000);
}

TEST(FileLinks, AreReadBackAsTheirNames) {
  constexpr std::string_view kMarks = "()[]<>\\%#?&*_`!|~: .;\"'@^w\n";
  RandomTexts random(13);
  for (int round = 0; round < 5000; ++round) {
    std::string name;
    for (std::size_t i = 1 + random.below(8); i > 0; --i) {
      name += random.below(2) == 0 ? random.byte() : kMarks[random.below(kMarks.size())];
    }
    std::erase(name, '/');
    std::erase(name, '\0');
    if (name.empty() || name == "." || name == "..") continue;
    const std::string file = ZDKAST::markdownFile(name, name, round % 2 == 0);
    const std::string image = ZDKAST::markdownImage(name, name, name);
    const auto links = parsed("a *" + file + "* _" + image + "_ b\n").textSummary().files;
    ASSERT_EQ(links.size(), 2u) << ::testing::PrintToString(file + image);
    EXPECT_EQ(links[0].filename, name);
    EXPECT_EQ(links[1].filename, name);
    EXPECT_EQ(links[0].range, (ByteRange{3, 3 + file.size()})) << file;
    EXPECT_TRUE(links[1].isImage);
    ASSERT_EQ(applied("a\n" + file + "\n" + image,
                      parsed("a\n" + file + "\n" + image).removeLinkWithURL(name)),
              "a");
  }
}

}  // namespace
}  // namespace zephyrdown

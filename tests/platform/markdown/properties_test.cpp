#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"

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

std::vector<std::string> without(std::vector<std::string> names, const std::string& name) {
  std::erase(names, name);
  return names;
}

/// Whether the results lie in order inside the text and apart, so that all other bytes stay.
testing::AssertionResult areSound(const std::string& text,
                                  std::vector<ZDKASTOperationResult> results) {
  std::sort(results.begin(), results.end(),
            [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
  std::size_t end = 0;
  for (const auto& result : results) {
    if (result.range.begin < end || result.range.end < result.range.begin ||
        result.range.end > text.size()) {
      return testing::AssertionFailure() << result.range.begin << " to " << result.range.end;
    }
    end = result.range.end;
  }
  return testing::AssertionSuccess();
}

/// What must hold of every text whatever.
void checkText(const std::string& text) {
  SCOPED_TRACE(testing::PrintToString(text.substr(0, 2000)));
  const ZDKAST tree = parsed(text);
  ASSERT_EQ(tree.markdown(), text);
  const ZDKTextSummary summary = tree.textSummary();

  std::size_t end = 0;
  for (const HashtagMention& tag : tree.hashtags()) {
    ASSERT_GE(tag.range.begin, end);
    ASSERT_LE(tag.range.end, text.size());
    ASSERT_EQ(text[tag.range.begin], '#');
    end = tag.range.end;
  }

  // A link that is appended is found, and its removal gives the text before.
  const std::string link = ZDKAST::markdownFile("zz.pdf", "zz.pdf", true);
  const auto appending = tree.appendText(link);
  ASSERT_EQ(appending.size(), 1u);
  ASSERT_EQ(appending[0].range.begin, appending[0].range.end);
  const std::string appended = applied(text, appending);
  const ZDKTextSummary after = parsed(appended).textSummary();
  ASSERT_EQ(after.todoIncomplete, summary.todoIncomplete) << appended;
  ASSERT_EQ(after.todoCompleted, summary.todoCompleted) << appended;
  ASSERT_EQ(after.tags, summary.tags) << appended;
  if (after.files.size() != summary.files.size()) {
    ASSERT_EQ(after.files.size(), summary.files.size() + 1) << appended;
    const std::string restored = applied(appended, parsed(appended).removeLinkWithURL("zz.pdf"));
    const bool isClosing =
        appending[0].replacement.find_first_not_of("\r\n") != appending[0].replacement.find(link);
    if (!isClosing) {
      ASSERT_EQ(restored, text) << appended;
    }
  } else {
    ADD_FAILURE() << "not found: " << appended;
  }

  const auto prepending = tree.prependText("zz");
  ASSERT_EQ(prepending.size(), 1u);
  const std::string prepended = applied(text, prepending);
  const ZDKTextSummary below = parsed(prepended).textSummary();
  ASSERT_EQ(below.todoIncomplete, summary.todoIncomplete) << prepended;
  ASSERT_EQ(below.todoCompleted, summary.todoCompleted) << prepended;
  ASSERT_EQ(below.tags, summary.tags) << prepended;

  for (const FileLink& file : summary.files) {
    const auto removal = tree.removeLinkWithURL(file.filename);
    ASSERT_TRUE(areSound(text, removal)) << file.filename;
    const std::string removed = applied(text, removal);
    for (const FileLink& left : parsed(removed).textSummary().files) {
      ASSERT_NE(left.filename, file.filename) << removed;
    }
  }

  for (const bool bottom : {false, true}) {
    const std::string tagged = applied(text, tree.addHashtag("zz top", bottom));
    auto tags = parsed(tagged).textSummary().tags;
    ASSERT_NE(std::find(tags.begin(), tags.end(), "zz top"), tags.end()) << tagged;
    std::sort(tags.begin(), tags.end());
    auto expected = summary.tags;
    expected.push_back("zz top");
    std::sort(expected.begin(), expected.end());
    ASSERT_EQ(tags, expected) << tagged;
    ASSERT_TRUE(parsed(tagged).addHashtag("zz top", bottom).empty());
  }

  for (const std::string& name : summary.tags) {
    const auto removal = tree.removeHashtag(name);
    ASSERT_TRUE(areSound(text, removal)) << name;
    // HTML or code that stood directly behind a tag may become a block at the line's begin.
    const bool bares = std::any_of(removal.begin(), removal.end(), [&](const auto& result) {
      const std::string next = text.substr(result.range.end, 1);
      return next == "<" || next == "`";
    });
    if (!bares) {
      ASSERT_EQ(parsed(applied(text, removal)).textSummary().tags, without(summary.tags, name))
          << name << " leaves " << applied(text, removal);
    }
    const auto renaming = tree.renameHashtag(name, "zz top");
    ASSERT_TRUE(areSound(text, renaming)) << name;
    auto tags = parsed(applied(text, renaming)).textSummary().tags;
    ASSERT_EQ(std::count(tags.begin(), tags.end(), name), 0) << applied(text, renaming);
    ASSERT_EQ(std::count(tags.begin(), tags.end(), "zz top"), 1) << applied(text, renaming);
  }
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
  const char* rounds = std::getenv("TAVI_RANDOM_ROUNDS");
  const int count = rounds != nullptr ? std::atoi(rounds) : 3000;
  for (int round = 0; round < count && !testing::Test::HasFailure(); ++round) {
    checkText(random.text(kMarkdown, 1 + random.below(30)));
  }
}

TEST(Markdown, ReadsAnyBytes) {
  constexpr std::string_view kMarks("\n#-[]`\0\xFF", 8);
  RandomTexts random(7);
  for (int round = 0; round < 500 && !testing::Test::HasFailure(); ++round) {
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
       }) {
    ZDKAST tree = parsed("#first " + text + "\n\n#last");
    EXPECT_EQ(tree.textSummary().tags.back(), "last") << text.substr(0, 30);
    tree.applyTextOperationResults(tree.renameHashtag("last", "x y"));
    tree.applyTextOperationResults(tree.appendText("end"));
    EXPECT_TRUE(tree.markdown().ends_with("\nend\n\n#x y#")) << text.substr(0, 30);
  }
}

TEST(Markdown, HoldsItsPropertiesForTheFilesOfThisMachine) {
  std::size_t checked = 0;
  for (const char* folder :
       {"/usr/lib/node_modules", "/usr/local/lib/node_modules", "/usr/share"}) {
    std::error_code error;
    for (fs::recursive_directory_iterator file(folder, error), end; file != end && checked < 150;
         file.increment(error)) {
      if (error || file->path().extension() != ".md" || file->is_symlink() ||
          file->file_size() > 60'000) {
        continue;
      }
      std::ifstream stream(file->path(), std::ios::binary);
      SCOPED_TRACE(file->path());
      checkText(std::string(std::istreambuf_iterator<char>(stream), {}));
      ++checked;
    }
  }
  if (checked == 0) GTEST_SKIP() << "no Markdown files here";
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
    ASSERT_EQ(links.size(), 2u) << testing::PrintToString(file + image);
    EXPECT_EQ(links[0].filename, name);
    EXPECT_EQ(links[1].filename, name);
    EXPECT_EQ(links[0].range, (SourceRange{3, 3 + file.size()})) << file;
    EXPECT_TRUE(links[1].isImage);
    ASSERT_EQ(applied("a\n" + file + "\n" + image,
                      parsed("a\n" + file + "\n" + image).removeLinkWithURL(name)),
              "a");
  }
}

}  // namespace
}  // namespace zephyrdown

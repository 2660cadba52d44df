#include "platform/markdown/markdown_properties.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/markdown/ascii.h"
#include "platform/markdown/ast.h"
#include "platform/markdown/block_scanner.h"
#include "platform/markdown/document.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/lines.h"

namespace zephyrdown {
namespace {

using Operations = std::vector<ZDKASTOperationResult>;
using Names = std::vector<std::string>;

ZDKTextSummary summaryOf(const std::string& text) {
  return ZDKAST::fromMarkdown(text).textSummary();
}

Names sorted(Names names) {
  std::sort(names.begin(), names.end());
  return names;
}

Names without(Names names, const std::string& name) {
  std::erase(names, name);
  return names;
}

bool holds(const Names& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

/// A line, the kind of its top-level block, if any, and whether it has visible text.
struct Line {
  std::optional<BlockKind> kind;
  bool showsText;
  std::string text;
  bool operator==(const Line&) const = default;
};
using Lines = std::vector<Line>;

bool isMarked(const Block& block) {
  return block.kind == BlockKind::list || block.kind == BlockKind::lateList ||
         block.kind == BlockKind::quote;
}

/// Plain text, or a link to a file.
bool showsText(std::string_view text, const Document& document, ByteRange line) {
  const auto isOn = [&](ByteRange range) {
    const std::size_t begin = std::max(range.begin, line.begin);
    const std::size_t end = std::min(range.end, line.end);
    return begin < end && !isBlankText(text.substr(begin, end - begin));
  };
  // Stretches are in order and do not overlap.
  const auto first =
      std::partition_point(document.stretches.begin(), document.stretches.end(),
                           [&](const TextStretch& stretch) { return stretch.end <= line.begin; });
  const auto last =
      std::partition_point(first, document.stretches.end(),
                           [&](const TextStretch& stretch) { return stretch.begin < line.end; });
  return std::any_of(first, last,
                     [&](const TextStretch& stretch) {
                       return isOn({stretch.begin, stretch.end});
                     }) ||
         std::any_of(document.files.begin(), document.files.end(),
                     [&](const auto& file) { return isOn(file.link.range); });
}

/// The lines that contain a word; a block's text may or may not include lines with only marks.
bool holdsWord(const std::string& line) {
  return std::any_of(line.begin(), line.end(),
                     [](char c) { return isASCIILetter(byteOf(c)) || byteOf(c) >= 0x80; });
}

Lines linesOf(const std::string& text) {
  const Document document = readDocument(text);
  const Layout layout(text, document);
  Lines lines;
  auto block = document.blocks.begin();
  BlockScanner scanner;
  bool isAttached = false;
  for (std::size_t at = document.bodyBegin; at < text.size(); at = nextLine(text, at)) {
    const ByteRange range{at, lineEnd(text, at)};
    const std::string line = text.substr(at, range.end - at);
    // A line that closes open HTML.
    const bool isClosing =
        line == "</pre>" || line == "</script>" || line == "</style>" || line == "</textarea>";
    while (block != document.blocks.end() && block->text.end <= at) ++block;
    // Tag lines and footnotes directly below a list or quote do not count as part of it.
    const bool mayBeFoot = line.starts_with("[^") || layout.isTagLine(at);
    isAttached = scanner.read(line).isLazy && (mayBeFoot || isAttached);
    if (isClosing || !holdsWord(line)) continue;
    const bool isInside = block != document.blocks.end() && block->text.begin < range.end;
    Line found{std::nullopt, showsText(text, document, range), line};
    // The end of a text is known, but not which block the markup around it belongs to.
    const bool isMarkup =
        isInside && !found.showsText && (isMarked(*block) || block->kind == BlockKind::paragraph);
    if (isAttached) {
      found.kind = BlockKind::paragraph;
    } else if (isInside && !isMarkup) {
      found.kind = block->kind;
    }
    lines.push_back(found);
  }
  return lines;
}

/// Whether `after` is `before` with `inserted` at one place.
bool isInsertion(const Lines& before, const Lines& inserted, const Lines& after) {
  if (after.size() != before.size() + inserted.size()) return false;
  const auto split = std::mismatch(before.begin(), before.end(), after.begin()).first;
  for (auto at = split;; --at) {
    const auto begin = after.begin() + (at - before.begin());
    const auto end = begin + static_cast<std::ptrdiff_t>(inserted.size());
    if (std::equal(inserted.begin(), inserted.end(), begin) && std::equal(at, before.end(), end)) {
      return true;
    }
    if (at == before.begin()) return false;
  }
}

class Text {
 public:
  explicit Text(const std::string& text)
      : text_(text), tree_(ZDKAST::fromMarkdown(text)), summary_(tree_.textSummary()) {}

  void check() {
    EXPECT_EQ(tree_.markdown(), text_);
    checkMentions();
    checkAppending();
    for (const char* inserted : {"zz", "- zz", "> zz", "# zz", "```\nzz", "<!-- zz -->", "[zz]: /u",
                                 "| zz |\n|-|\n| yy |", "zz\n===\nyy"}) {
      checkInsertion(tree_.prependText(inserted), inserted);
      checkInsertion(tree_.appendText(inserted), inserted);
    }
    for (const FileLink& file : summary_.files) checkRemovalOfFile(file.filename);
    for (const bool bottom : {false, true}) checkAddingOfTag(bottom);
    for (const std::string& name : summary_.tags) {
      checkRemovalOfTag(name);
      checkRenamingOfTag(name);
    }
  }

 private:
  /// Applies the operations. Expects their ranges to be ascending, separate and within the text,
  /// and all other bytes to stay.
  std::string rewritten(const std::string& text, Operations operations) {
    ZDKAST tree = ZDKAST::fromMarkdown(text);
    tree.applyTextOperationResults(operations);
    std::sort(operations.begin(), operations.end(),
              [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
    std::string expected;
    std::size_t end = 0;
    for (const auto& [range, replacement] : operations) {
      EXPECT_TRUE(range.begin >= end && range.end >= range.begin && range.end <= text.size())
          << range.begin << " to " << range.end;
      if (::testing::Test::HasFailure()) return text;
      expected += text.substr(end, range.begin - end) + replacement;
      end = range.end;
    }
    expected += text.substr(end);
    EXPECT_EQ(tree.markdown(), expected);
    return expected;
  }

  void checkMentions() {
    std::size_t end = 0;
    for (const HashtagMention& tag : tree_.hashtags()) {
      ASSERT_GE(tag.range.begin, end);
      ASSERT_LE(tag.range.end, text_.size());
      ASSERT_EQ(text_[tag.range.begin], '#');
      end = tag.range.end;
    }
  }

  /// Expects inserted text to be in the result unchanged and as blocks of its own, and the rest to
  /// be read as before.
  std::string checkInsertion(const Operations& insertion, const std::string& inserted) {
    EXPECT_EQ(insertion.size(), 1u);
    EXPECT_EQ(insertion.at(0).range.begin, insertion[0].range.end);
    EXPECT_NE(insertion[0].replacement.find(inserted), std::string::npos);
    const std::string longer = rewritten(text_, insertion);
    const ZDKTextSummary after = summaryOf(longer);
    EXPECT_EQ(after.todoIncomplete, summary_.todoIncomplete) << longer;
    EXPECT_EQ(after.todoCompleted, summary_.todoCompleted) << longer;
    EXPECT_EQ(after.tags, summary_.tags) << longer;
    EXPECT_EQ(after.wikiLinks, summary_.wikiLinks) << longer;
    const ZDKTextSummary own = summaryOf(inserted);
    EXPECT_EQ(after.files.size(), summary_.files.size() + own.files.size()) << longer;
    EXPECT_TRUE(mayChangeTitle(inserted) || after.title == summary_.title) << after.title << " in\n"
                                                                           << longer;
    EXPECT_TRUE(isInsertion(linesOf(text_), linesOf(inserted), linesOf(longer)))
        << inserted << " in\n"
        << longer;
    return longer;
  }

  /// Cases in which the title may change: there is none yet, it is not a heading and one is
  /// inserted, or it is part of the foot.
  bool mayChangeTitle(const std::string& inserted) const {
    const Document document = readDocument(text_);
    const auto titleEnd = document.headingEnd ? document.headingEnd : document.titleEnd;
    if (!titleEnd || *titleEnd > Layout(text_, document).footBegin()) return true;
    return !document.headingEnd && readDocument(inserted).headingEnd;
  }

  /// Expects an appended link to be found, and its removal to restore the text.
  void checkAppending() {
    const std::string link = ZDKAST::markdownFile("zz.pdf", "zz.pdf", true);
    const Operations appending = tree_.appendText(link);
    const std::string appended = checkInsertion(appending, link);
    ASSERT_EQ(summaryOf(appended).files.size(), summary_.files.size() + 1) << appended;
    const std::string& replacement = appending[0].replacement;
    const bool isClosing = replacement.find_first_not_of("\r\n") != replacement.find(link);
    if (isClosing) return;  // the closing line of an open code block stays
    const std::size_t end = appending[0].range.begin;
    const std::size_t below = nextLine(text_, end);
    const bool hasFootBelow = below < text_.size() && skipBlankLines(text_, below) == below;
    const bool isParted = nextLine(replacement, 0) < replacement.find(link);
    if (hasFootBelow && isParted)
      return;  // so does a blank line that separates the foot from a list
    EXPECT_EQ(rewritten(appended, ZDKAST::fromMarkdown(appended).removeLinkWithURL("zz.pdf")),
              text_)
        << appended;
  }

  void checkRemovalOfFile(const std::string& filename) {
    const std::string removed = rewritten(text_, tree_.removeLinkWithURL(filename));
    for (const FileLink& left : summaryOf(removed).files) {
      EXPECT_NE(left.filename, filename) << removed;
    }
  }

  void checkAddingOfTag(bool bottom) {
    const std::string tagged = rewritten(text_, tree_.addHashtag("zz top", bottom));
    Names expected = summary_.tags;
    expected.push_back("zz top");
    EXPECT_EQ(sorted(summaryOf(tagged).tags), sorted(expected)) << tagged;
    EXPECT_TRUE(ZDKAST::fromMarkdown(tagged).addHashtag("zz top", bottom).empty());
  }

  /// Whether only the "--" in the tag prevents the text around it from being a comment.
  bool mayBecomeComment(const std::string& name) const {
    return name.find("--") != std::string::npos && text_.find("<!--") != std::string::npos;
  }

  void checkRemovalOfTag(const std::string& name) {
    const Operations removal = tree_.removeHashtag(name);
    const std::string removed = rewritten(text_, removal);
    if (mayBecomeComment(name)) return;
    // HTML or code directly after a tag may become a block at the line's start.
    const bool bares = std::any_of(removal.begin(), removal.end(), [&](const auto& result) {
      const std::string next = text_.substr(result.range.end, 1);
      return next == "<" || next == "`";
    });
    if (bares) return;
    EXPECT_EQ(summaryOf(removed).tags, without(summary_.tags, name)) << name << ": " << removed;
  }

  void checkRenamingOfTag(const std::string& name) {
    if (mayBecomeComment(name)) return;
    const std::string renamed = rewritten(text_, tree_.renameHashtag(name, "zz top"));
    const Names tags = summaryOf(renamed).tags;
    EXPECT_FALSE(holds(tags, name)) << renamed;
    EXPECT_EQ(std::count(tags.begin(), tags.end(), "zz top"), 1) << renamed;
    for (const char* to : {"z", "zz/1top"}) checkSummaryAfterRenaming(name, to);
  }

  void checkSummaryAfterRenaming(const std::string& name, const std::string& to) {
    const Operations renaming = tree_.renameHashtag(name, to);
    const auto summary = tree_.summaryAfterRenaming(renaming, name, to);
    const ZDKTextSummary read = summaryOf(rewritten(text_, renaming));
    EXPECT_TRUE(summary.value_or(read) == read) << name;
  }

  const std::string& text_;
  ZDKAST tree_;
  ZDKTextSummary summary_;
};

}  // namespace

void checkText(const std::string& text) {
  SCOPED_TRACE(::testing::PrintToString(text.substr(0, 2000)));
  Text(text).check();
}

}  // namespace zephyrdown

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/lines.h"
#include "support/fuzzing.h"

// Properties of any bytes: they are parsed and written unchanged, ranges are within the text and
// separate, operations can be applied, and removing an appended link restores the text.

using namespace zephyrdown;
using support::require;

namespace {

std::string done(const std::string& text, std::vector<ZDKASTOperationResult> operations) {
  std::sort(operations.begin(), operations.end(),
            [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
  std::size_t end = 0;
  for (const auto& [range, replacement] : operations) {
    require(range.begin >= end && range.end >= range.begin && range.end <= text.size());
    end = range.end;
  }
  ZDKAST tree = ZDKAST::fromMarkdown(text);
  tree.applyTextOperationResults(operations);
  return tree.markdown();
}

void checkTags(const std::string& text, const ZDKAST& tree) {
  std::size_t end = 0;
  for (const HashtagMention& tag : tree.hashtags()) {
    require(tag.range.begin >= end && tag.range.end <= text.size());
    require(text[tag.range.begin] == '#');
    require(ZDKHashtag::sanitizeTagName(tag.name).value_or(tag.name) == tag.name);
    end = tag.range.end;
  }
}

std::string withoutLineBreaks(std::string text) {
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  return text;
}

void checkLink(const std::string& text, const ZDKAST& tree) {
  const std::string link = ZDKAST::markdownFile("zz.pdf", "zz.pdf", true);
  const auto appending = tree.appendText(link);
  const std::string& inserted = appending.at(0).replacement;
  const std::string appended = done(text, appending);
  const ZDKAST longer = ZDKAST::fromMarkdown(appended);
  const bool closesSomething =
      inserted.find_first_not_of("\r\n") != inserted.find(link) || text.find("zz.pdf") != text.npos;
  const std::string shorter = done(appended, longer.removeLinkWithURL("zz.pdf"));
  const bool isFound = longer.textSummary().files.size() > tree.textSummary().files.size();
  if (!isFound || closesSomething) return;
  // A blank line that separates the foot from a list or quote directly above stays.
  const bool isParted = nextLine(inserted, 0) < inserted.find(link);
  require(shorter == text || (isParted && withoutLineBreaks(shorter) == withoutLineBreaks(text)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(support::fuzzed(data, size));
  const ZDKAST tree = ZDKAST::fromMarkdown(text);
  const ZDKTextSummary summary = tree.textSummary();
  require(tree.markdown() == text);
  checkTags(text, tree);
  checkLink(text, tree);
  done(text, tree.prependText(text));
  done(text, tree.appendText(text));
  for (const bool bottom : {false, true}) done(text, tree.addHashtag("zz top", bottom));
  for (const std::string& name : summary.tags) {
    done(text, tree.removeHashtag(name));
    done(text, tree.renameHashtag(name, "zz top"));
    for (const char* to : {"z", "zz/1top"}) {
      const auto renaming = tree.renameHashtag(name, to);
      const auto renamed = tree.summaryAfterRenaming(renaming, name, to);
      require(!renamed || *renamed == textSummary(done(text, renaming)));
    }
  }
  for (const FileLink& file : summary.files) done(text, tree.removeLinkWithURL(file.filename));
  return 0;
}

#include "platform/markdown/ast.h"

#include <algorithm>
#include <unordered_set>

#include "platform/markdown/document.h"
#include "platform/markdown/insertion.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/removal.h"
#include "platform/markdown/tag_rewriting.h"

namespace zephyrdown {

namespace {

using Files = std::vector<FileMention>;

/// Whether the label of `file` holds an image of a file of another name.
bool holdsOtherFile(const Files& files, Files::const_iterator file) {
  for (auto inner = std::next(file);
       inner != files.end() && inner->link.range.begin < file->label.end; ++inner) {
    if (inner->link.filename != file->link.filename) return true;
  }
  return false;
}

Operations plannedLinkRemoval(std::string_view text, const Document& document,
                              std::string_view name) {
  std::vector<SourceRange> whole;
  Operations unwrapped;
  const Files& files = document.files;
  for (auto file = files.begin(); file != files.end(); ++file) {
    const auto& [link, label] = *file;
    if (link.filename != name || (!whole.empty() && link.range.begin < whole.back().end)) continue;
    if (holdsOtherFile(files, file)) {
      unwrapped.push_back({{link.range.begin, label.begin}, {}});
      unwrapped.push_back({{label.end, link.range.end}, {}});
    } else {
      whole.push_back(link.range);
    }
  }
  Operations results = plannedRemoval(text, document.bodyBegin, whole);
  results.insert(results.end(), unwrapped.begin(), unwrapped.end());
  return results;
}

/// The one change that makes `after` out of `before`.
ZDKASTOperationResult difference(std::string_view before, std::string_view after) {
  const auto begin = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto prefix = static_cast<std::size_t>(begin.first - before.begin());
  before.remove_prefix(prefix);
  after.remove_prefix(prefix);
  const auto end = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
  const auto suffix = static_cast<std::size_t>(end.first - before.rbegin());
  return {{prefix, prefix + before.size() - suffix},
          std::string(after.substr(0, after.size() - suffix))};
}

}  // namespace

ZDKAST ZDKAST::fromMarkdown(std::string text) {
  return ZDKAST(std::move(text));
}

const Document& ZDKAST::document() const {
  if (!document_) document_ = std::make_shared<const Document>(readDocument(text_));
  return *document_;
}

Operations ZDKAST::appendText(std::string_view text, SourceRange) const {
  if (text.empty()) return {};
  return plannedAppend(text_, Layout(text_, document()), text);
}

Operations ZDKAST::prependText(std::string_view text, SourceRange) const {
  if (text.empty()) return {};
  return plannedPrepend(text_, Layout(text_, document()), text);
}

Operations ZDKAST::removeLinkWithURL(std::string_view url, SourceRange) const {
  // Brackets around a link are text, and may be a link once it is gone. Few notes nest like that;
  // the bound is for those made to.
  constexpr int kMostRounds = 50;
  Operations results = plannedLinkRemoval(text_, document(), url);
  if (results.empty()) return results;
  ZDKAST changed = *this;
  changed.applyTextOperationResults(results);
  Operations more = plannedLinkRemoval(changed.text_, changed.document(), url);
  if (more.empty()) return results;
  for (int round = 0; !more.empty() && round < kMostRounds; ++round) {
    changed.applyTextOperationResults(more);
    more = plannedLinkRemoval(changed.text_, changed.document(), url);
  }
  return {difference(text_, changed.text_)};
}

Operations ZDKAST::addHashtag(std::string_view name, bool bottom) const {
  return plannedTag(text_, document(), name, bottom);
}

Operations ZDKAST::removeHashtag(std::string_view name) const {
  return plannedTagRemoval(text_, document(), name);
}

Operations ZDKAST::renameHashtag(std::string_view from, std::string_view to) const {
  return plannedTagRename(text_, document(), from, to);
}

void ZDKAST::applyTextOperationResults(const Operations& results) {
  if (results.empty()) return;
  Operations inOrder = results;
  std::stable_sort(inOrder.begin(), inOrder.end(),
                   [](const auto& a, const auto& b) { return a.range.begin < b.range.begin; });
  std::string text;
  std::size_t done = 0;
  for (const ZDKASTOperationResult& result : inOrder) {
    text.append(text_, done, result.range.begin - done).append(result.replacement);
    done = result.range.end;
  }
  text.append(text_, done);
  text_ = std::move(text);
  document_.reset();
}

ZDKTextSummary ZDKAST::textSummary() const {
  const Document& found = document();
  ZDKTextSummary summary;
  summary.title = found.title;
  summary.wikiLinks = found.wikiLinks;
  summary.todoIncomplete = found.todoIncomplete;
  summary.todoCompleted = found.todoCompleted;
  summary.hasImages = found.hasImages;
  summary.hasCode = found.hasCode;
  for (const FileMention& file : found.files) summary.files.push_back(file.link);
  std::unordered_set<std::string_view> known;
  for (const HashtagMention& tag : found.hashtags) {
    if (known.insert(tag.name).second) summary.tags.push_back(tag.name);
  }
  return summary;
}

std::vector<HashtagMention> ZDKAST::hashtags() const {
  return document().hashtags;
}

}  // namespace zephyrdown

#include "platform/markdown/ast.h"

#include <algorithm>
#include <unordered_set>

#include "platform/markdown/document.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/insertion.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/link_removal.h"
#include "platform/markdown/operations.h"
#include "platform/markdown/tag_rewriting.h"

namespace zephyrdown {

ZDKAST ZDKAST::fromMarkdown(std::string text) {
  ZDKAST tree;
  tree.owned_ = std::move(text);
  return tree;
}

ZDKAST ZDKAST::viewing(std::string_view text) {
  ZDKAST tree;
  tree.viewed_ = text;
  return tree;
}

const Document& ZDKAST::document() const {
  if (!document_) document_ = std::make_shared<const Document>(readDocument(source()));
  return *document_;
}

Operations ZDKAST::appendText(std::string_view text, ByteRange) const {
  if (text.empty()) return {};
  return plannedAppend(source(), Layout(source(), document()), text);
}

Operations ZDKAST::prependText(std::string_view text, ByteRange) const {
  if (text.empty()) return {};
  return plannedPrepend(source(), Layout(source(), document()), text);
}

Operations ZDKAST::removeLinkWithURL(std::string_view url, ByteRange) const {
  return removeLinks([&](std::string_view filename) { return filename == url; });
}

Operations ZDKAST::removeLinks(const std::function<bool(std::string_view)>& shouldRemove) const {
  return plannedLinkRemoval(source(), document(), shouldRemove);
}

Operations ZDKAST::addHashtag(std::string_view name, bool bottom) const {
  return plannedTag(source(), document(), name, bottom);
}

Operations ZDKAST::removeHashtag(std::string_view name) const {
  return plannedTagRemoval(source(), document(), name);
}

Operations ZDKAST::renameHashtag(std::string_view from, std::string_view to) const {
  return plannedTagRename(source(), document(), from, to);
}

void ZDKAST::applyTextOperationResults(const Operations& results) {
  if (results.empty()) return;
  document_.reset();
  owned_ = withOperations(source(), results);
}

std::optional<ZDKTextSummary> ZDKAST::summaryAfterRenaming(const Operations& renaming,
                                                           std::string_view from,
                                                           std::string_view to) const {
  const Document& found = document();
  // The positions of links to files would move.
  if (!found.files.empty() || !changesNamesOnly(renaming, source(), found, from)) {
    return std::nullopt;
  }
  ZDKTextSummary summary = textSummary();
  std::vector<std::string> tags;
  for (std::string& tag : summary.tags) {
    std::string name = ZDKHashtag::renamedTagName(tag, from, to).value_or(std::move(tag));
    if (std::find(tags.begin(), tags.end(), name) == tags.end()) tags.push_back(std::move(name));
  }
  summary.tags = std::move(tags);
  return summary;
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

ZDKTextSummary textSummary(std::string_view text) {
  return ZDKAST::viewing(text).textSummary();
}

const std::string& ZDKAST::markdown() const {
  if (!owned_) owned_ = std::string(viewed_);
  return *owned_;
}

std::vector<HashtagMention> ZDKAST::hashtags() const {
  return document().hashtags;
}

bool ZDKAST::hasHashtag(std::string_view name) const {
  return hasTag(document(), name);
}

}  // namespace zephyrdown

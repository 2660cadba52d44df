#include "platform/markdown/ast.h"

#include <unordered_set>

#include "platform/markdown/document.h"
#include "platform/markdown/insertion.h"
#include "platform/markdown/layout.h"
#include "platform/markdown/link_removal.h"
#include "platform/markdown/operations.h"
#include "platform/markdown/tag_rewriting.h"

namespace zephyrdown {

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
  return removeLinks([&](std::string_view filename) { return filename == url; });
}

Operations ZDKAST::removeLinks(const std::function<bool(std::string_view)>& goes) const {
  return plannedLinkRemoval(text_, document(), goes);
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
  text_ = withOperations(text_, results);
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

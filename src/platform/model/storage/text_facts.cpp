#include "platform/model/storage/text_facts.h"

#include <algorithm>

#include "platform/system/hashing.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavimodel {

TextFacts TextFacts::of(std::string_view text) {
  return of(text, zephyrdown::textSummary(text));
}

std::string TextFacts::digestOf(std::string_view text) {
  const platform::system::SHA256Digest digest = platform::system::sha256(text);
  return platform::system::hexadecimal(
      {reinterpret_cast<const char*>(digest.data()), std::size_t{8}});
}

TextFacts TextFacts::of(std::string_view text, const zephyrdown::ZDKTextSummary& summary) {
  TextFacts facts;
  facts.digest = digestOf(text);
  facts.length = static_cast<std::int64_t>(text.size());
  facts.todoIncomplete = summary.todoIncomplete;
  facts.todoCompleted = summary.todoCompleted;
  if (summary.hasImages) facts.features |= images;
  if (summary.hasCode) facts.features |= code;
  if (!summary.wikiLinks.empty()) facts.features |= wikiLinks | linksStored;
  if (platform::text::trimmingWhitespaceAndNewlines(text).empty()) facts.features |= blank;
  for (const std::string& title : summary.wikiLinks) {
    if (!title.empty()) facts.links.push_back(platform::text::foldedForSearch(title));
  }
  std::sort(facts.links.begin(), facts.links.end());
  facts.links.erase(std::unique(facts.links.begin(), facts.links.end()), facts.links.end());
  return facts;
}

}  // namespace tavimodel

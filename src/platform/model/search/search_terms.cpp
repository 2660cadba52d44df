#include "platform/model/search/search_terms.h"

#include <algorithm>

namespace tavimodel {

using platform::text::ByteRange;
using platform::text::CaseFolding;

SearchTermCounter::SearchTermCounter(const std::vector<std::string>& terms) {
  for (const std::string& term : terms) terms_.emplace_back(term, CaseFolding::full);
}

std::int64_t SearchTermCounter::numberOfMatches(std::string_view text) const {
  if (terms_.size() == 1) return static_cast<std::int64_t>(terms_[0].findAll(text).size());
  // All terms' matches by their beginning; of those that begin together the longest first. Taking
  // each that begins behind the last one taken is what one pass of the alternation would find.
  std::vector<ByteRange> matches;
  for (const auto& term : terms_) {
    const std::vector<ByteRange> found = term.findAll(text);
    matches.insert(matches.end(), found.begin(), found.end());
  }
  std::sort(matches.begin(), matches.end(), [](const ByteRange& a, const ByteRange& b) {
    return a.begin != b.begin ? a.begin < b.begin : a.end > b.end;
  });
  std::int64_t count = 0;
  std::size_t behind = 0;
  for (const ByteRange& match : matches) {
    if (match.begin < behind) continue;
    ++count;
    behind = match.end;
  }
  return count;
}

}  // namespace tavimodel

#include "platform/model/search/search_terms.h"

#include <algorithm>

#include "platform/text/folding.h"

namespace tavimodel {

using platform::text::ByteRange;
using platform::text::CaseFolding;
using platform::text::StringSearch;
using platform::text::StringSetSearch;

std::size_t SearchTerms::add(const std::string& term) {
  const auto [number, isNew] =
      numbers_.try_emplace(platform::text::foldedForSearch(term), terms_.size());
  if (isNew) {
    terms_.push_back(term);
    searches_.emplace_back();
  }
  return number->second;
}

/// Whether there are so many terms that one slow pass for all takes less time than a fast pass for
/// each.
bool SearchTerms::areMany() const {
  constexpr std::size_t many = 16;
  return terms_.size() > many;
}

const StringSearch& SearchTerms::searchFor(std::size_t term) const {
  std::optional<StringSearch>& search = searches_[term];
  if (!search) search.emplace(terms_[term], CaseFolding::full);
  return *search;
}

const StringSetSearch& SearchTerms::searchForAll() const {
  if (!all_) all_.emplace(terms_, CaseFolding::full);
  return *all_;
}

std::int64_t SearchTerms::numberOfMatches(std::string_view text) const {
  if (areMany()) return static_cast<std::int64_t>(searchForAll().count(text));
  if (terms_.size() == 1) return static_cast<std::int64_t>(searchFor(0).findAll(text).size());
  return mergedMatches(text);
}

std::int64_t SearchTerms::mergedMatches(std::string_view text) const {
  struct Next {
    const StringSearch& search;
    std::optional<ByteRange> match;
  };
  std::vector<Next> next;
  for (std::size_t term = 0; term < terms_.size(); ++term) {
    next.push_back({searchFor(term), searchFor(term).find(text)});
  }
  const auto comesFirst = [](const Next& a, const Next& b) {
    if (!a.match || !b.match) return a.match.has_value();
    return a.match->begin != b.match->begin ? a.match->begin < b.match->begin
                                            : a.match->end > b.match->end;
  };
  for (std::int64_t count = 0;; ++count) {
    const auto first = std::min_element(next.begin(), next.end(), comesFirst);
    if (first == next.end() || !first->match) return count;
    const std::size_t end = first->match->end;
    for (auto& [search, match] : next) {
      if (match && match->begin < end) match = search.find(text, end);
    }
  }
}

bool TermsInText::has(std::size_t term) {
  if (!terms_.areMany()) return terms_.searchFor(term).isIn(text_);
  if (found_.empty()) found_ = terms_.searchForAll().found(text_);
  return found_[term];
}

}  // namespace tavimodel

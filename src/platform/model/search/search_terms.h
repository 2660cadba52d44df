#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/text/string_search.h"
#include "platform/text/string_set_search.h"

namespace tavimodel {

/// The distinct terms of one query; terms that differ only in case or Unicode composition are one.
/// A few terms are searched for one by one, many in one pass over a text.
class SearchTerms {
 public:
  /// Adds a term if it is new, and returns its number. Add all terms before the first search.
  std::size_t add(const std::string& term);
  bool empty() const { return terms_.empty(); }

  /// Counts non-overlapping matches of any term in a text: from the end of each match, the next is
  /// the leftmost, and of those the longest.
  std::int64_t numberOfMatches(std::string_view text) const;

 private:
  friend class TermsInText;

  const platform::text::StringSearch& searchFor(std::size_t term) const;
  const platform::text::StringSetSearch& searchForAll() const;
  bool areMany() const;
  std::int64_t mergedMatches(std::string_view text) const;

  std::vector<std::string> terms_;
  std::unordered_map<std::string, std::size_t> numbers_;  // by the terms' folded forms
  // Created on first use.
  mutable std::vector<std::optional<platform::text::StringSearch>> searches_;
  mutable std::optional<platform::text::StringSetSearch> all_;
};

/// Answers which terms one text contains. `terms` and `text` must outlive it.
class TermsInText {
 public:
  TermsInText(const SearchTerms& terms, std::string_view text) : terms_(terms), text_(text) {}
  bool has(std::size_t term);

 private:
  const SearchTerms& terms_;
  std::string_view text_;
  std::vector<bool> found_;  // by term; filled on first use, only for many terms
};

}  // namespace tavimodel

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

/// The terms of one query, each once: terms that are equal but for case and composition are one.
/// A few are looked for one by one, many in one pass over a text.
class SearchTerms {
 public:
  /// The term's number. All terms are added before the first text is looked at.
  std::size_t add(const std::string& term);
  bool empty() const { return terms_.empty(); }

  /// Matches of all terms in a text, as one alternation: each is the first from the end of the one
  /// before on, and the longest that begins there.
  std::int64_t numberOfMatches(std::string_view text) const;

 private:
  friend class TermsInText;

  const platform::text::StringSearch& searchFor(std::size_t term) const;
  const platform::text::StringSetSearch& searchForAll() const;
  bool areMany() const;
  std::int64_t mergedMatches(std::string_view text) const;

  std::vector<std::string> terms_;
  std::unordered_map<std::string, std::size_t> numbers_;  // by the terms' folded forms
  // Made when they are first asked for.
  mutable std::vector<std::optional<platform::text::StringSearch>> searches_;
  mutable std::optional<platform::text::StringSetSearch> all_;
};

/// Which terms are in one text. Both must outlive it.
class TermsInText {
 public:
  TermsInText(const SearchTerms& terms, std::string_view text) : terms_(terms), text_(text) {}
  bool has(std::size_t term);

 private:
  const SearchTerms& terms_;
  std::string_view text_;
  std::vector<bool> found_;  // of many terms, when the first is asked for
};

}  // namespace tavimodel

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/search/search_query.h"
#include "platform/text/string_search.h"

namespace tavimodel {

/// Counts what a query's terms find in a text: the terms that are not negated, as one alternation.
/// Matches do not overlap; where several terms match at one place the longest counts.
class SearchTermCounter {
 public:
  explicit SearchTermCounter(const std::vector<std::string>& terms);
  std::int64_t numberOfMatches(std::string_view text) const;

 private:
  std::vector<platform::text::StringSearch> terms_;
};

}  // namespace tavimodel

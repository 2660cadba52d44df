#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/model/search/predicate.h"
#include "platform/model/search/search_terms.h"

namespace tavimodel {

/// The search language's two readings of a query: which notes it finds, and what it counts in them.
class KVNoteSearchManager {
 public:
  /// Nothing when the query asks for nothing, which finds every note. Throws SearchSyntaxError.
  static std::optional<Predicate> predicateForSearchString(std::string_view query);
  /// The notes that carry the tag of this canonical name, or one below it.
  static Predicate predicateForTag(std::string name);
  /// Nothing when the query has no terms to count. Throws SearchSyntaxError.
  static std::optional<SearchTermCounter> defaultSearchRegexForSearchString(std::string_view query);
};

}  // namespace tavimodel

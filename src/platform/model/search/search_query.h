#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/search/search_condition.h"

namespace tavimodel {

/// A query that cannot mean anything; what() is a sentence for the user. Callers above the model
/// know it as the invalid argument that it is.
class SearchSyntaxError : public std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

/// A parsed query: every group must hold, and a group holds when one of its conditions does.
struct SearchQuery {
  std::vector<std::vector<SearchCondition>> groups;
  bool titlesOnly = false;  ///< @title: terms are looked for in titles
  bool ocrOnly = false;     ///< @ocr: terms are looked for in the recognised text of attachments
};

/// Reads the search language (docs/search.md). Days are those of the local time zone; `now` is in
/// seconds since 1970-01-01 UTC. Throws SearchSyntaxError for an
/// unknown directive, a date that is not in the calendar, and a query that asks for too much.
SearchQuery parseSearchQuery(std::string_view text, double now);

}  // namespace tavimodel

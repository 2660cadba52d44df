#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/search/search_condition.h"

namespace tavimodel {

/// A query with an error; what() is a sentence for the user. Layers above the model catch it as
/// std::invalid_argument.
class SearchSyntaxError : public std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

/// A parsed query in conjunctive normal form: every group must hold, and a group holds if one of
/// its conditions does.
struct SearchQuery {
  std::vector<std::vector<SearchCondition>> groups;
  bool titlesOnly = false;  ///< @title: terms are searched for in titles only
  bool ocrOnly =
      false;  ///< @ocr: terms are searched for in the recognised text of attachments only
};

/// Parses the search language (docs/search.md). Days are in the local time zone; `now` is in
/// seconds since 1970-01-01 UTC. Throws SearchSyntaxError for an unknown directive, an invalid
/// date, or too many conditions.
SearchQuery parseSearchQuery(std::string_view text, double now);

}  // namespace tavimodel

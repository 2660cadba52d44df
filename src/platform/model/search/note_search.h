#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/model/search/search_query.h"
#include "platform/model/search/search_terms.h"

namespace tavimodel {

/// A query, read once: which notes it finds, and what is counted in them.
struct NoteSearch {
  std::shared_ptr<const SearchQuery> query;    ///< null: it asks nothing, and finds every note
  std::shared_ptr<const SearchTerms> counted;  ///< the terms that are not negated; null: none
};

/// Reads a query of the search language, whose days are those of now. Ill-formed UTF-8 counts as
/// U+FFFD. Throws SearchSyntaxError.
NoteSearch readSearch(std::string_view query);

/// Finds the notes that carry the tag of this canonical name, or one below it.
std::shared_ptr<const SearchQuery> searchForTag(std::string name);

}  // namespace tavimodel

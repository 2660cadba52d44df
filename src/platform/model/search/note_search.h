#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/model/search/search_query.h"
#include "platform/model/search/search_terms.h"

namespace tavimodel {

/// A parsed query: which notes it finds, and the terms whose matches are counted in them.
struct NoteSearch {
  std::shared_ptr<const SearchQuery> query;  ///< null: the query is empty and finds all notes
  std::shared_ptr<const SearchTerms>
      counted;  ///< the terms that are not negated; null if there are none
};

/// Parses a query of the search language, with days relative to the current time. Replaces
/// ill-formed UTF-8 by U+FFFD. Throws SearchSyntaxError.
NoteSearch readSearch(std::string_view query);

/// Returns a query for the notes with a tag, given by its canonical name, or with a descendant of
/// it.
std::shared_ptr<const SearchQuery> searchForTag(std::string name);

}  // namespace tavimodel

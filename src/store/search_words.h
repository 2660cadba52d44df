#pragma once

#include <string>
#include <vector>

namespace tavi {

/// A directive of the search language.
struct SearchWord {
  std::string word;   ///< "@todo"; with an example value if it takes one, "@last7days"
  std::string finds;  ///< the notes that it finds: "with open to-dos"
};

/// All directives, as docs/search.md lists them. Does not open the database.
std::vector<SearchWord> searchWords();

}  // namespace tavi

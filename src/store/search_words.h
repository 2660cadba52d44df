#pragma once

#include <string>
#include <vector>

namespace tavi {

/// A directive of the search language.
struct SearchWord {
  std::string word;   ///< "@todo"; with a value an example of it, "@last7days"
  std::string finds;  ///< which notes, "with open to-dos"
};

/// All directives there are, as docs/search.md lists them. Reads no notes.
std::vector<SearchWord> searchWords();

}  // namespace tavi

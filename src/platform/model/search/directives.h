#pragma once

#include <string>
#include <vector>

namespace tavimodel {

/// A word of the search language that begins with "@".
struct SearchDirective {
  std::string word;   ///< "@todo"; for a directive with a value an example: "@last7days"
  std::string finds;  ///< "with open to-dos"
};

/// Returns all directives in the order of docs/search.md.
std::vector<SearchDirective> searchDirectives();

}  // namespace tavimodel

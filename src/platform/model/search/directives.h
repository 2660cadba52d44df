#pragma once

#include <string>
#include <vector>

namespace tavimodel {

/// A word of the search language that begins with "@".
struct SearchDirective {
  std::string word;   ///< "@todo"; with a value an example of it, "@last7days"
  std::string finds;  ///< "with open to-dos"
};

/// All directives there are, as docs/search.md lists them.
std::vector<SearchDirective> searchDirectives();

}  // namespace tavimodel

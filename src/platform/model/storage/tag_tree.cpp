#include "platform/model/storage/tag_tree.h"

#include <fmt/format.h>

namespace tavimodel {

std::string isInTagTree(std::string_view title, std::string_view name) {
  // "0" is the character after "/".
  return fmt::format("({0} = {1} OR ({0} > {1} || '/' AND {0} < {1} || '0'))", title, name);
}

}  // namespace tavimodel

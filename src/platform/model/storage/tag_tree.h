#pragma once

#include <string>
#include <string_view>

namespace tavimodel {

/// SQL that tests `title`, a column with the name of a tag: it is the tag named, or one below it.
/// `name` is a parameter, such as "?1".
std::string isInTagTree(std::string_view title, std::string_view name);

}  // namespace tavimodel

#pragma once

#include <string>
#include <string_view>

namespace tavimodel {

/// Returns an SQL test whether `title`, a column with a tag's name, is the tag `name` or a
/// descendant of it. `name` is a parameter, such as "?1".
std::string isInTagTree(std::string_view title, std::string_view name);

}  // namespace tavimodel

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

using Operations = std::vector<ZDKASTOperationResult>;

/// The text with all of them done. Their ranges lie in it and apart, in any order.
std::string withOperations(std::string_view text, Operations operations);

/// The one operation that makes `after` out of `before`.
ZDKASTOperationResult difference(std::string_view before, std::string_view after);

}  // namespace zephyrdown

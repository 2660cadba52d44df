#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace zephyrdown {

using Operations = std::vector<ZDKASTOperationResult>;

/// Applies all operations to the text. Their ranges must be within it and must not overlap; their
/// order is free.
std::string withOperations(std::string_view text, Operations operations);

/// Returns one operation that turns `before` into `after`.
ZDKASTOperationResult difference(std::string_view before, std::string_view after);

}  // namespace zephyrdown

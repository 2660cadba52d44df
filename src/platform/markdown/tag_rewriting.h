#pragma once

#include <string_view>
#include <vector>

#include "platform/markdown/document.h"

namespace zephyrdown {

std::vector<ZDKASTOperationResult> plannedTag(std::string_view text, const Document& document,
                                              std::string_view name, bool bottom);
std::vector<ZDKASTOperationResult> plannedTagRemoval(std::string_view text,
                                                     const Document& document,
                                                     std::string_view name);
std::vector<ZDKASTOperationResult> plannedTagRename(std::string_view text, const Document& document,
                                                    std::string_view from, std::string_view to);

}  // namespace zephyrdown

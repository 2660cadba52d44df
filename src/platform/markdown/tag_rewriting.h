#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

Operations plannedTag(std::string_view text, const Document& document, std::string_view name,
                      bool bottom);
Operations plannedTagRemoval(std::string_view text, const Document& document,
                             std::string_view name);
Operations plannedTagRename(std::string_view text, const Document& document, std::string_view from,
                            std::string_view to);

}  // namespace zephyrdown

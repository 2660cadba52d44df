#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the edits of ZDKAST::addHashtag.
Operations plannedTag(std::string_view text, const Document& document, std::string_view name,
                      bool bottom);
/// Plans the edits of ZDKAST::removeHashtag.
Operations plannedTagRemoval(std::string_view text, const Document& document,
                             std::string_view name);
/// Plans the edits of ZDKAST::renameHashtag.
Operations plannedTagRename(std::string_view text, const Document& document, std::string_view from,
                            std::string_view to);

}  // namespace zephyrdown

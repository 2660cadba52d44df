#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

bool hasTag(const Document& document, std::string_view name);

/// Plans the edits of ZDKAST::addHashtag.
Operations plannedTag(std::string_view text, const Document& document, std::string_view name,
                      bool bottom);
/// Plans the edits of ZDKAST::removeHashtag.
Operations plannedTagRemoval(std::string_view text, const Document& document,
                             std::string_view name);
/// Plans the edits of ZDKAST::renameHashtag.
Operations plannedTagRename(std::string_view text, const Document& document, std::string_view from,
                            std::string_view to);
/// Whether it is certain that `renaming`, planned for `from` on this document, changes the names of
/// its tags and nothing else that Markdown reads in the text.
bool changesNamesOnly(const Operations& renaming, std::string_view text, const Document& document,
                      std::string_view from);

}  // namespace zephyrdown

#pragma once

#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the removal of every link to the file. A label that shows an image of another file stays.
Operations plannedLinkRemoval(std::string_view text, const Document& document,
                              std::string_view name);

}  // namespace zephyrdown

#pragma once

#include <functional>
#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the removal of every link to a file whose name `goes` accepts. A label that shows an image
/// of another file stays.
Operations plannedLinkRemoval(std::string_view text, const Document& document,
                              const std::function<bool(std::string_view filename)>& goes);

}  // namespace zephyrdown

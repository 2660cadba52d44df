#pragma once

#include <functional>
#include <string_view>

#include "platform/markdown/document.h"
#include "platform/markdown/operations.h"

namespace zephyrdown {

/// Plans the removal of every link to a file for whose name `shouldRemove` returns true. Keeps a
/// label that contains an image of another file.
Operations plannedLinkRemoval(std::string_view text, const Document& document,
                              const std::function<bool(std::string_view filename)>& shouldRemove);

}  // namespace zephyrdown

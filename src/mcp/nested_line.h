#pragma once

#include <optional>
#include <string_view>

namespace tavi::mcp {

/// The value of the member "id" of a JSON object, as it is written there, however deep its other
/// values nest: only the outermost members are read. Of a repeated key the last one counts.
/// Nothing when there is no such member, or when what leads to it is not JSON.
std::optional<std::string_view> writtenID(std::string_view object);

}  // namespace tavi::mcp

#pragma once

#include <optional>
#include <string_view>

namespace tavi::mcp {

/// The JSON text of the member "id" of an object, however deep the other members nest: only the
/// outermost level is parsed. The last of several members wins. Absent if there is no such member,
/// or the text before it is not JSON.
std::optional<std::string_view> writtenID(std::string_view object);

}  // namespace tavi::mcp

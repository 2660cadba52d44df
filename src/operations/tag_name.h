#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// The canonical name of a tag that an input gives. Throws OperationError for a text without a name
/// ("Tag must not be empty", with `label` in front) and for one that no hashtag can be read as,
/// which names the sign in the way.
std::string checkedTagName(std::string_view text, std::string_view label);

}  // namespace tavi

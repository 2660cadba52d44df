#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// The canonical name of a tag in an input. Throws OperationError if the name is empty or cannot be
/// written as a hashtag; the message starts with `label` and names the character that is not
/// allowed: "Tag must not contain '#': a#b".
std::string checkedTagName(std::string_view text, std::string_view label);

}  // namespace tavi

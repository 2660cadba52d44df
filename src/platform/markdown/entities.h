#pragma once

#include <string>
#include <string_view>

namespace zephyrdown {

/// Appends the character that an HTML entity such as "&amp;" or "&#x2014;" stands for; the entity
/// itself where its name is none of the usual ones.
void appendEntity(std::string& out, std::string_view entity);

/// `raw` without backslash escapes and with its entities resolved.
std::string unescaped(std::string_view raw);

}  // namespace zephyrdown

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephyrdown {

/// An entity or numeric character reference (CommonMark 0.30, 6.2): "&amp;", "&#8212;", "&#x2014;".
struct Entity {
  std::size_t length = 0;  ///< in bytes, including "&" and ";"; 0 if there is no entity
  std::u32string scalars;  ///< the one or two scalars it represents; U+FFFD for an invalid number
};

/// The entity whose "&" is at `at`. Unknown names are not entities.
Entity entityAt(std::string_view text, std::size_t at);

/// The entity whose ";" is the last byte before `end`.
Entity entityBefore(std::string_view text, std::size_t end);

/// Appends the characters that `entity` represents, or `entity` itself if its name is unknown.
void appendEntity(std::string& out, std::string_view entity);

/// Removes backslash escapes from `raw`, and resolves its entities.
std::string unescaped(std::string_view raw);

}  // namespace zephyrdown

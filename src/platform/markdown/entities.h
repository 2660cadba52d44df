#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephyrdown {

/// A character reference of HTML as CommonMark 0.30 (6.2) knows it: "&amp;", "&#8212;", "&#x2014;".
struct Entity {
  std::size_t length = 0;  ///< in bytes, "&" and ";" included; 0 where there is no entity
  std::u32string scalars;  ///< what it stands for: one or two; U+FFFD for a number of no character
};

/// The entity whose "&" is at `at`. An unknown name makes none.
Entity entityAt(std::string_view text, std::size_t at);

/// The entity whose ";" is the last byte before `end`.
Entity entityBefore(std::string_view text, std::size_t end);

/// Appends the characters that `entity` stands for; `entity` itself where its name is unknown.
void appendEntity(std::string& out, std::string_view entity);

/// `raw` without backslash escapes and with its entities resolved.
std::string unescaped(std::string_view raw);

}  // namespace zephyrdown

#pragma once

#include <cstddef>
#include <string_view>

namespace platform::text {

/// The byte offset that is `count` user-perceived characters (extended grapheme clusters, UAX #29)
/// before `position`, or 0. CR LF is one character. `text` must be valid UTF-8.
std::size_t stepBackCharacters(std::string_view text, std::size_t position, std::size_t count);

/// The byte offset that is `count` characters after `position`, or the text's end.
std::size_t stepForwardCharacters(std::string_view text, std::size_t position, std::size_t count);

/// The number of characters in `text`.
std::size_t characterCount(std::string_view text);

/// Whether the scalar has the general category L, M or N.
bool isAlphanumeric(char32_t scalar);

/// Whether the scalar cannot begin a character: combining marks (general category M, including
/// variation selectors), joiners, emoji modifiers.
bool extendsCharacter(char32_t scalar);

/// Whether the scalar has Unicode's property Terminal_Punctuation, as "." and "," do.
bool isTerminalPunctuation(char32_t scalar);

/// Whether the scalar has Unicode's property White_Space, which includes line breaks.
bool isWhitespace(char32_t scalar);

}  // namespace platform::text

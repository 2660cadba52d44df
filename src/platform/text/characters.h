#pragma once

#include <cstddef>
#include <string_view>

namespace platform::text {

/// The position `count` user-perceived characters (extended grapheme clusters, UAX #29) before
/// `position`, or 0. CR LF is one. `text` valid UTF-8; count >= 0.
std::size_t stepBackCharacters(std::string_view text, std::size_t position, std::size_t count);

/// The position `count` characters behind `position`, or the text's end.
std::size_t stepForwardCharacters(std::string_view text, std::size_t position, std::size_t count);

/// The number of characters in `text`.
std::size_t characterCount(std::string_view text);

/// General categories L, M and N.
bool isAlphanumeric(char32_t scalar);

/// A scalar that cannot begin a character: combining marks (general category M, which holds the
/// variation selectors), joiners, emoji modifiers.
bool extendsCharacter(char32_t scalar);

/// Terminal_Punctuation of Unicode: marks that end a sentence or a part of one, as "." and "," do.
bool isTerminalPunctuation(char32_t scalar);

/// White_Space of Unicode, line breaks included.
bool isWhitespace(char32_t scalar);

}  // namespace platform::text

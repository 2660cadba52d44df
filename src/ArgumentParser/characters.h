#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Functions on the characters of a UTF-8 text. A character is a Unicode code point in this
/// library; each byte that is not part of valid UTF-8 counts as one character.
namespace ArgumentParser {

/// The first character, with all its bytes; empty for an empty text.
std::string_view firstCharacter(std::string_view text);

/// The characters in order, as views into `text`.
std::vector<std::string_view> characters(std::string_view text);

/// Replaces control characters and line separators with escapes: \n, \r, \t, else \u and four
/// digits. A message can quote the result without breaking its line or moving the cursor.
std::string withoutControls(std::string_view text);

std::size_t characterCount(std::string_view text);

/// The Levenshtein distance: inserting, removing or replacing one character costs 1.
std::size_t editDistance(std::string_view a, std::string_view b);

}  // namespace ArgumentParser

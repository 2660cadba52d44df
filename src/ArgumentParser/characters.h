#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Texts as characters, which in this library are Unicode code points. Bytes that are not UTF-8
/// count as a character each.
namespace ArgumentParser {

/// The first character, with all its bytes; empty for an empty text.
std::string_view firstCharacter(std::string_view text);

std::vector<std::string_view> characters(std::string_view text);

/// With control characters and line separators as escapes: \n, \r, \t, else \u and four digits. So
/// a message that quotes the text stays on its line and moves no cursor.
std::string withoutControls(std::string_view text);

std::size_t characterCount(std::string_view text);

/// Unit costs for inserting, removing and replacing one character (Levenshtein).
std::size_t editDistance(std::string_view a, std::string_view b);

}  // namespace ArgumentParser

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ArgumentParser {

/// Breaks a text at blanks so that its lines, with `indent` spaces in front of each, fit into
/// `width` columns. Breaks of its own stay, blank lines stay blank, and a word that is longer
/// than a line runs past its end. Empty when there is no room for even one column.
std::string wrapped(std::string_view text, int width, int indent = 0);

/// Puts spaces in front of each line but the first.
std::string withLaterLinesIndented(std::string_view text, int indent);

}  // namespace ArgumentParser

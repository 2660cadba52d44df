#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace ArgumentParser {

/// Wraps a text at blanks so that its lines, each indented by `indent` spaces, fit into `width`
/// columns. Existing line breaks are kept, blank lines are not indented, and a word longer than a
/// line overflows. Empty if `indent` leaves no column.
std::string wrapped(std::string_view text, int width, int indent = 0);

/// Indents each line but the first.
std::string withLaterLinesIndented(std::string_view text, int indent);

}  // namespace ArgumentParser

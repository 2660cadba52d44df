#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Prepares texts for the parser, which does not support the whole dialect. Bytes that it would
/// misread as markup are masked in a copy with the same offsets; the contents of a text are then
/// read from the original.
namespace zephyrdown {

/// Returns the masked copy; absent if the body needs none. Masks
///   the brackets of a footnote's label, "[^1]", which would be a reference link, the inner
///   brackets of "[[label]](destination)", which would be a wiki link, underscores inside of
///   hashtags, which would be emphasis between "#_a" and "#b_", brackets in a paragraph of ten
///   thousands of lines, on which it would spend minutes, and marks of lists and quotes nested
///   hundreds deep, down which it would walk at each line.
std::optional<std::string> maskedForParser(std::string_view body);

/// Whether the parser would spend seconds on addresses such as www.example.org, because it searches
/// for the end of each to the end of the paragraph.
bool hasEndlessAddresses(std::string_view body);

/// Returns a copy without reference definitions, which the parser expands at each use.
std::string maskedForPlainReading(std::string_view input);

}  // namespace zephyrdown

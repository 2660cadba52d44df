#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The parser does not know all of the dialect. Where it would take a part of ours for markup of
/// its own, it is shown a copy in which another byte stands there; offsets stay the same, and all
/// that is read out of a text is read from the text itself.
namespace zephyrdown {

/// The copy, or nothing where the body can be shown as it is. Masked are
///   the brackets of a footnote's label, "[^1]", which would be a reference to a link,
///   the inner brackets of "[[label]](destination)", which would be a wiki link,
///   underscores inside of hashtags, which would be emphasis between "#_a" and "#b_",
///   brackets in a paragraph of ten thousands of lines, on which it would spend minutes, and
///   marks of lists and quotes nested hundreds deep, down which it would walk at each line.
std::optional<std::string> maskedForParser(std::string_view body);

/// Whether the parser would spend seconds on addresses such as www.example.org: it looks for the
/// end of each up to the end of its paragraph.
bool hasEndlessAddresses(std::string_view body);

/// The copy without the definitions of references, whose uses a text can multiply.
std::string maskedForPlainReading(std::string_view input);

}  // namespace zephyrdown

#pragma once

#include <string>
#include <string_view>

/// The road between the name of a file and the destination of a link to it.
namespace zephyrdown {

/// The file name that a link's destination stands for, percent-decoded; empty where it names no
/// file beside the note: it has a scheme, a slash or a NUL, or nothing before its fragment.
std::string fileNameOfDestination(std::string_view destination);

/// The destination for a file name: what Markdown, or a reader of URLs, would take for something
/// else is percent-encoded. Letters of all scripts stay.
std::string destinationForFileName(std::string_view name);

}  // namespace zephyrdown

#pragma once

#include <string>
#include <string_view>

/// Converts between the name of a file and the destination of a link to it.
namespace zephyrdown {

/// The file name in a link's destination, percent-decoded. Empty if the destination is not a file
/// of the note: if it has a scheme, a slash or a NUL, or nothing before its fragment.
std::string fileNameOfDestination(std::string_view destination);

/// The destination for a file name. Percent-encodes what has a meaning in Markdown or in URLs, but
/// not letters of any script.
std::string destinationForFileName(std::string_view name);

}  // namespace zephyrdown

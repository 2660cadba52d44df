#pragma once

#include <string_view>

namespace platform::system {

/// The type of a file according to its extension. An SVG conforms to image too.
struct FileType {
  bool conformsToSVG = false;
  bool conformsToImage = false;
  bool conformsToPDF = false;
};

/// Looks up the extension, ignoring case. All fields are false if it is missing or unknown.
FileType fileTypeOf(std::string_view filename);

/// The part of a file name after its last dot. Empty if there is no dot, or the only dot is the
/// first character, or the last dot is the last character.
std::string_view pathExtension(std::string_view filename);

}  // namespace platform::system

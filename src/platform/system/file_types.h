#pragma once

#include <string_view>

namespace platform::system {

/// What a filename's extension says of a file. `svg` files conform to image as well.
struct FileType {
  bool conformsToSVG = false;
  bool conformsToImage = false;
  bool conformsToPDF = false;
};

/// By the extension after the last dot, ignoring case; all false for none or an unknown one.
FileType fileTypeOf(std::string_view filename);

/// The text after the last dot of a file name, without the dot; empty for none, for a name that
/// begins with its only dot, and for one that ends in a dot.
std::string_view pathExtension(std::string_view filename);

}  // namespace platform::system

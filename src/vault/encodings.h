#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Texts of files in other encodings than UTF-8 (ICU's converters and names).
namespace tavi::vault {

/// Whether there is an encoding of this name.
bool isEncoding(const std::string& name);

/// The text in UTF-8; absent when the bytes are no text of that encoding.
std::optional<std::string> toUTF8(std::string_view bytes, const std::string& encoding);

/// What the bytes, which are not UTF-8, most likely are: a name for `toUTF8`. Absent where nothing
/// can be said, as of a picture.
std::optional<std::string> likelyEncoding(std::string_view bytes);

}  // namespace tavi::vault

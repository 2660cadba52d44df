#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Converts texts from other encodings to UTF-8. Encodings have ICU's names, such as
/// "windows-1252".
namespace tavi::vault {

/// Whether ICU has a converter of this name.
bool isEncoding(const std::string& name);

/// Converts a text to UTF-8; absent if the bytes are not valid in that encoding.
std::optional<std::string> toUTF8(std::string_view bytes, const std::string& encoding);

/// The most likely encoding of a text that is not UTF-8, as a name for `toUTF8`. Absent if there is
/// no guess, as for a picture.
std::optional<std::string> likelyEncoding(std::string_view bytes);

}  // namespace tavi::vault

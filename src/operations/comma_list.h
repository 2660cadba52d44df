#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// The pieces of a text between its commas, empty ones dropped, then each without the blanks at
/// its ends (line breaks are none): "a, ,,b" gives "a", "", "b".
std::vector<std::string> trimmedPieces(std::string_view text);

/// The texts with the separator between each two.
std::string joined(std::span<const std::string_view> texts, std::string_view separator);

}  // namespace tavi

#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// The pieces of a text between its commas, empty ones dropped, then each without the blanks at
/// its ends (line breaks are none): "a, ,,b" gives "a", "", "b".
std::vector<std::string> trimmedPieces(std::string_view text);

}  // namespace tavi

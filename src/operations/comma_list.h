#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// Splits a text at commas, drops empty pieces, then trims spaces and tabs (but not line breaks)
/// from the others: "a, ,,b" gives "a", "", "b".
std::vector<std::string> trimmedPieces(std::string_view text);

/// Concatenates the texts with the separator between them.
std::string joined(std::span<const std::string_view> texts, std::string_view separator);

}  // namespace tavi

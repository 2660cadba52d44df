#pragma once

#include <optional>
#include <string>

namespace tavi {

/// Everything on standard input, possibly nothing; absent at once when it is a terminal, so that
/// no command waits for typing. Throws std::system_error: half of an input must not become a note.
std::optional<std::string> readStdinData();

/// The text of a --content option, its escapes read; without one the text on standard input as it
/// is. Absent when that is a terminal or not valid UTF-8.
std::optional<std::string> textOrStdin(const std::optional<std::string>& option);

}  // namespace tavi

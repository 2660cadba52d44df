#pragma once

#include <optional>
#include <string>

namespace tavi {

/// Reads standard input to its end. Absent if it is a terminal, so that no command waits for
/// typing. Throws std::system_error if a read fails, since a truncated input must not become a
/// note.
std::optional<std::string> readStdinData();

/// The text of a --content option, unescaped; without the option, standard input as it is. Absent
/// if that is a terminal or not valid UTF-8.
std::optional<std::string> textOrStdin(const std::optional<std::string>& option);

}  // namespace tavi

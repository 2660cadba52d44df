#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Texts of this many bytes and more are read straight into their place: of others SQLite makes a
/// copy of its own, which is quicker.
constexpr std::int64_t largeText = 256 * 1024;

/// The text of a note; nothing when the note is gone or has none. Throws sqlite::Error.
std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note);

/// Whether the note's text is `text`, in little memory. Throws sqlite::Error.
bool isLargeText(sqlite::Connection& connection, std::int64_t note, std::string_view text);

}  // namespace tavimodel

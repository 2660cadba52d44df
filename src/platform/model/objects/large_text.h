#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/system/hashing.h"

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Texts of at least this many bytes are read directly into their string. For shorter ones a query
/// is faster, although SQLite makes a copy of its own.
constexpr std::int64_t largeText = 256 * 1024;

/// Reads the text of the note with this row id; absent if there is no such note or it has no text.
/// Throws sqlite::Error.
std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note);

/// The SHA-256 of the note's text, computed in pieces to save memory; absent if there is no such
/// note or it has no text. Throws sqlite::Error.
std::optional<platform::system::SHA256Digest> digestOfLargeText(sqlite::Connection& connection,
                                                                std::int64_t note);

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/system/hashing.h"

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// Texts of this many bytes and more are read straight into their place: of others SQLite makes a
/// copy of its own, which is quicker.
constexpr std::int64_t largeText = 256 * 1024;

/// The text of a note; nothing when the note is gone or has none. Throws sqlite::Error.
std::optional<std::string> readLargeText(sqlite::Connection& connection, std::int64_t note);

/// Its SHA-256, worked out in little memory; nothing when the note is gone or has no text. Throws
/// sqlite::Error.
std::optional<platform::system::SHA256Digest> digestOfLargeText(sqlite::Connection& connection,
                                                                std::int64_t note);

}  // namespace tavimodel

#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace platform::system {

/// A SHA-256 digest (FIPS 180-4).
using SHA256Digest = std::array<std::uint8_t, 32>;

SHA256Digest sha256(std::string_view bytes);
/// The same of bytes that come in pieces: `next` gives one, and an empty one at the end.
SHA256Digest sha256(const std::function<std::string_view()>& next);

/// Formats bytes as lower-case hexadecimal digits, two per byte.
std::string hexadecimal(std::string_view bytes);

/// A new random UUID (RFC 4122, version 4) as 36 characters in upper case.
std::string newUUID();

}  // namespace platform::system

#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace platform::system {

using SHA256Digest = std::array<std::uint8_t, 32>;

/// SHA-256 (FIPS 180-4) of the bytes.
SHA256Digest sha256(std::string_view bytes);

/// Two lower-case hexadecimal digits a byte, in order.
std::string hexadecimal(std::string_view bytes);

/// A new random UUID (RFC 4122, version 4), in its 36-character upper-case text form.
std::string newUUID();

}  // namespace platform::system

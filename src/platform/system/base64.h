#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform::system {

/// Standard base64 (RFC 4648, section 4), padded, without line breaks.
std::string base64Encoded(std::string_view bytes);

/// The bytes, or nothing for a text that is not standard padded base64. Blanks are not skipped.
std::optional<std::string> base64Decoded(std::string_view text);

}  // namespace platform::system

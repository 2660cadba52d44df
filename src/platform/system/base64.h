#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform::system {

/// Encodes as standard base64 (RFC 4648, section 4) with padding, without line breaks.
std::string base64Encoded(std::string_view bytes);

/// Decodes standard base64 with padding. Absent if the text is anything else, or contains white
/// space.
std::optional<std::string> base64Decoded(std::string_view text);

}  // namespace platform::system

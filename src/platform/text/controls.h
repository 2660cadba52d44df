#pragma once

#include <string>
#include <string_view>

namespace platform::text {

/// Replaces control characters (general category Cc), U+2028 and U+2029 by escapes:
/// , \r, \t, otherwise \u and four hexadecimal digits. The result is one line without control
/// sequences for a terminal. Ill-formed UTF-8 becomes U+FFFD.
std::string escapingControls(std::string_view text);

}  // namespace platform::text

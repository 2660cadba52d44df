#pragma once

#include <string>
#include <string_view>

namespace platform::text {

/// `text` with each control character (general category Cc) and each of U+2028 and U+2029 as an
/// escape: \n, \r, \t, else \u and four hexadecimal digits. So it stays on its line, and a terminal
/// obeys nothing in it. Ill-formed UTF-8 becomes U+FFFD.
std::string escapingControls(std::string_view text);

}  // namespace platform::text

#pragma once

#include <string>

namespace platform::system {

/// Hands a URL to the desktop: runs the `xdg-open` found in PATH with the URL as its one argument,
/// without a shell, its standard streams on /dev/null, and waits for it. False when there is no
/// such program or it ends with anything but 0.
bool openURL(const std::string& url);

}  // namespace platform::system

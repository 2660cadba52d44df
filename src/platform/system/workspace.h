#pragma once

#include <chrono>
#include <string>

namespace platform::system {

/// Hands a URL to the desktop: runs the `xdg-open` found in PATH with the URL as its one argument,
/// without a shell, in a session of its own and with its standard streams on /dev/null. False when
/// there is no such program or it ends with anything but 0.
///
/// Some desktops have it become the application itself. So one that is still at work after two
/// seconds counts as a yes, and goes on; it is reaped at a later call.
bool openURL(const std::string& url);
/// The same with another patience.
bool openURLWithin(std::chrono::milliseconds patience, const std::string& url);

}  // namespace platform::system

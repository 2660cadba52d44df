#pragma once

#include <chrono>
#include <string>

namespace platform::system {

/// Opens a URL on the desktop: runs the `xdg-open` in PATH with the URL as its only argument,
/// without a shell, in its own session and with its standard streams on /dev/null. False if there
/// is no such program or its exit code is not 0.
///
/// On some desktops xdg-open turns into the application itself and keeps running. If it still runs
/// after two seconds, that counts as success; a later call reaps it.
bool openURL(const std::string& url);
/// The same with another time limit than two seconds.
bool openURLWithin(std::chrono::milliseconds patience, const std::string& url);

}  // namespace platform::system

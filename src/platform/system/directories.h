#pragma once

#include <filesystem>
#include <optional>

namespace platform::system {

/// $HOME, else the user's home directory in /etc/passwd. Absent if neither is an absolute path.
std::optional<std::filesystem::path> homeDirectory();

/// $TMPDIR if it is an absolute path, else "/tmp".
std::filesystem::path temporaryDirectory();

/// ${XDG_DATA_HOME:-$HOME/.local/share}/tavi. As the XDG Base Directory standard requires, a
/// relative XDG_DATA_HOME is ignored. Creates nothing. Absent if there is no home directory.
std::optional<std::filesystem::path> applicationDataDirectory();

/// Creates a folder with mode 0700, whatever the umask is, unless it exists. Throws
/// std::system_error.
void makePrivateFolder(const std::filesystem::path& path);

}  // namespace platform::system

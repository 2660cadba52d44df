#pragma once

#include <filesystem>
#include <optional>

namespace platform::system {

/// HOME, else the password database's entry for the user; nothing when neither is an absolute
/// path.
std::optional<std::filesystem::path> homeDirectory();

/// TMPDIR, else "/tmp".
std::filesystem::path temporaryDirectory();

/// ${XDG_DATA_HOME:-$HOME/.local/share}/tavi (XDG Base Directory Specification: a relative
/// XDG_DATA_HOME is ignored). Nothing is created. Nothing when there is no home.
std::optional<std::filesystem::path> applicationDataDirectory();

/// Creates the folder, where it is not there, for its owner alone, whatever the umask is. Throws
/// std::system_error.
void makePrivateFolder(const std::filesystem::path& path);

}  // namespace platform::system

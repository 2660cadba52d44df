#pragma once

#include <filesystem>
#include <string>

namespace tavi::exporting {

/// Commits all changes below the folder to the repository that contains it; creates one if there is
/// none. Does nothing without changes. Throws std::runtime_error with git's output.
void commitFolder(const std::filesystem::path& folder, const std::string& message);

}  // namespace tavi::exporting

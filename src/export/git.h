#pragma once

#include <filesystem>
#include <string>

namespace tavi::exporting {

/// Commits what is below the folder, in the repository that it lies in, or a new one. Nothing
/// happens where nothing has changed. Throws std::runtime_error with what git says.
void commitFolder(const std::filesystem::path& folder, const std::string& message);

}  // namespace tavi::exporting

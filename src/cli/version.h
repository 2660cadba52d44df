#pragma once

#include <string>

namespace tavi {

/// The short version and the build number, which the build defines: "1.0.0 (1)".
std::string versionString();

}  // namespace tavi

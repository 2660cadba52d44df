#pragma once

#include <string>

namespace tavi {

/// "1.0.0 (1)": the short version and the build number, as the build fixed them.
std::string versionString();

}  // namespace tavi

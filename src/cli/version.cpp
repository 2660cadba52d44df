#include "cli/version.h"

#include <string_view>

namespace tavi {
namespace {

#ifndef TAVI_SHORT_VERSION
#define TAVI_SHORT_VERSION ""
#endif
#ifndef TAVI_BUILD_NUMBER
#define TAVI_BUILD_NUMBER ""
#endif

constexpr std::string_view shortVersion = TAVI_SHORT_VERSION;
constexpr std::string_view buildNumber = TAVI_BUILD_NUMBER;

}  // namespace

std::string versionString() {
  if (shortVersion.empty()) return "unknown";
  std::string version(shortVersion);
  if (!buildNumber.empty()) version.append(" (").append(buildNumber).append(")");
  return version;
}

}  // namespace tavi

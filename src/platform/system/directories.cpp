#include "platform/system/directories.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace platform::system {
namespace {

using std::filesystem::path;

/// The path that an environment variable holds, where it is absolute.
std::optional<path> absolutePathIn(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return path(value);
}

}  // namespace

std::optional<path> homeDirectory() {
  if (const auto home = absolutePathIn("HOME")) return home;
  const passwd* user = getpwuid(getuid());
  if (user == nullptr || user->pw_dir == nullptr || *user->pw_dir != '/') return std::nullopt;
  return path(user->pw_dir);
}

path temporaryDirectory() {
  return absolutePathIn("TMPDIR").value_or("/tmp");
}

std::optional<path> applicationDataDirectory() {
  if (const auto data = absolutePathIn("XDG_DATA_HOME")) return *data / "tavi";
  const auto home = homeDirectory();
  if (!home) return std::nullopt;
  return *home / ".local/share/tavi";
}

}  // namespace platform::system

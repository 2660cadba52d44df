#include "platform/system/directories.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <system_error>

namespace platform::system {
namespace {

using std::filesystem::path;

/// The path in an environment variable; absent unless it is absolute.
std::optional<path> absolutePathIn(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr || *value != '/') return std::nullopt;
  return path(value);
}

/// Reads /etc/passwd directly: getpwuid(3) loads shared libraries, which a static program cannot
/// do.
std::optional<path> homeOfUser(uid_t id) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> users(std::fopen("/etc/passwd", "re"),
                                                              std::fclose);
  if (!users) return std::nullopt;
  while (const passwd* user = fgetpwent(users.get())) {
    if (user->pw_uid != id) continue;
    if (*user->pw_dir != '/') return std::nullopt;
    return path(user->pw_dir);
  }
  return std::nullopt;
}

}  // namespace

std::optional<path> homeDirectory() {
  if (const auto home = absolutePathIn("HOME")) return home;
  return homeOfUser(getuid());
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

void makePrivateFolder(const path& folder) {
  // chmod, since a umask can remove the owner's permissions too.
  if (mkdir(folder.c_str(), S_IRWXU) == 0 && chmod(folder.c_str(), S_IRWXU) == 0) return;
  if (errno == EEXIST) return;
  throw std::system_error(errno, std::generic_category(), "Could not create " + folder.string());
}

}  // namespace platform::system

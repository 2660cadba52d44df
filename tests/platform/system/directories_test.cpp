#include "platform/system/directories.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <system_error>

#include "system_testing.h"

namespace platform::system {
namespace {

TEST(Directories, HomeIsTheVariableOrThePasswordDatabase) {
  {
    const ScopedVariable home("HOME", "/somewhere");
    EXPECT_EQ(homeDirectory(), "/somewhere");
  }
  const passwd* user = getpwuid(getuid());
  const std::optional<std::filesystem::path> expected =
      user == nullptr ? std::nullopt : std::optional<std::filesystem::path>(user->pw_dir);
  for (const std::optional<std::string>& value : {std::optional<std::string>(), {""}, {"here"}}) {
    const ScopedVariable home("HOME", value);
    EXPECT_EQ(homeDirectory(), expected);
  }
}

TEST(Directories, DataIsWhereTheDesktopKeepsIt) {
  const ScopedVariable home("HOME", "/home/ada");
  {
    const ScopedVariable data("XDG_DATA_HOME", "/data");
    EXPECT_EQ(applicationDataDirectory(), "/data/tavi");
  }
  for (const std::optional<std::string>& value : {std::optional<std::string>(), {""}, {"data"}}) {
    const ScopedVariable data("XDG_DATA_HOME", value);
    EXPECT_EQ(applicationDataDirectory(), "/home/ada/.local/share/tavi");
  }
}

TEST(Directories, PrivateFoldersAreTheirOwnersAloneUnderAnyUmask) {
  const ScopedDirectory folder;
  for (const mode_t mask : std::initializer_list<mode_t>{0000, 0022, 0777}) {
    const auto path = folder.path() / std::to_string(mask);
    const mode_t before = umask(mask);
    makePrivateFolder(path);
    umask(before);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_all);
    std::filesystem::permissions(path, std::filesystem::perms(0750));
    makePrivateFolder(path);  // exists already and keeps its permissions
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0750));
  }
  EXPECT_THROW(makePrivateFolder(folder.path() / "no/parent"), std::system_error);
}

}  // namespace
}  // namespace platform::system

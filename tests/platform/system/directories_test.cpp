#include "platform/system/directories.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

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

TEST(Directories, TemporaryFilesGoToTheVariablesDirectory) {
  {
    const ScopedVariable temporary("TMPDIR", "/scratch");
    EXPECT_EQ(temporaryDirectory(), "/scratch");
  }
  const ScopedVariable temporary("TMPDIR", std::nullopt);
  EXPECT_EQ(temporaryDirectory(), "/tmp");
}

}  // namespace
}  // namespace platform::system

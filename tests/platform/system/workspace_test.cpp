#include "platform/system/workspace.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <thread>

#include "system_testing.h"

namespace platform::system {
namespace {

class Workspace : public testing::Test {
 protected:
  Workspace() : path_("PATH", (folder_.path() / "bin").string() + ":/usr/bin:/bin") {}

  void installOpener(const std::string& script) {
    const auto program = folder_.path() / "bin/xdg-open";
    writeFile(program, "#!/bin/sh\n" + script);
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }

  ScopedDirectory folder_;
  ScopedVariable path_;
};

TEST_F(Workspace, GivesTheURLAsOneArgumentAndNoStreams) {
  const auto log = folder_.path() / "log";
  installOpener("{ printf '%s|' \"$#\" \"$1\"; cat; } > '" + log.string() + "'\necho noise >&2\n");
  const std::string url = "tavi://x/open?id=a b&$(touch nothing);'\"";
  testing::internal::CaptureStderr();
  EXPECT_TRUE(openURL(url));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(readFile(log), "1|" + url + "|");
}

TEST_F(Workspace, SaysNoWhenTheProgramFailsOrIsMissing) {
  installOpener("exit 3\n");
  EXPECT_FALSE(openURL("tavi://x"));
  installOpener("kill -9 $$\n");
  EXPECT_FALSE(openURL("tavi://x"));
  const ScopedVariable path("PATH", (folder_.path() / "nothing").string());
  EXPECT_FALSE(openURL("tavi://x"));
}

TEST_F(Workspace, TakesAnOpenerThatStaysForAYesAndLeavesItAlone) {
  const auto log = (folder_.path() / "log").string();
  installOpener("echo $$ > '" + log + "'.new; mv '" + log + "'.new '" + log + "'; exec sleep 60\n");
  EXPECT_TRUE(openURLWithin(std::chrono::milliseconds(0), "tavi://x"));
  while (!std::filesystem::exists(log)) std::this_thread::yield();
  const pid_t opener = std::stoi(readFile(log));
  EXPECT_EQ(getsid(opener), opener) << "it has a session of its own";
  EXPECT_EQ(kill(opener, SIGKILL), 0);
  int status = 0;
  EXPECT_EQ(waitpid(opener, &status, 0), opener);
  EXPECT_EQ(WTERMSIG(status), SIGKILL) << "it was still at work";
}

}  // namespace
}  // namespace platform::system

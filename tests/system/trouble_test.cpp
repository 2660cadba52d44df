#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/foreign_client.h"
#include "support/program.h"
#include "support/throwaway_home.h"

// Trouble from outside: each gives one sentence and exit code 1, and the notes are as they were.

namespace {

namespace fs = std::filesystem;
using support::ProgramResult;
using support::runProgram;

class Trouble : public testing::Test {
 protected:
  void SetUp() override {
    const auto made = runProgram({"create", "--fields", "id"}, "# Kept\n\nold text");
    id = made.output.substr(0, made.output.find('\n'));
    ASSERT_FALSE(id.empty()) << made.errors;
  }

  std::string text() { return runProgram({"cat", id}).output; }

  static void expectOneSentence(const ProgramResult& result, const std::string& cause) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.errors.starts_with("Error: ")) << result.errors;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_NE(result.errors.find(cause), std::string::npos) << result.errors;
  }

  support::ThrowawayHome home;
  std::string id;
};

TEST_F(Trouble, AFileSizeLimitIsAFailedWriteAndNotADeadProgram) {
  // In a process of its own: a limit cannot be raised again.
  const pid_t child = fork();
  if (child == 0) {
    const rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const auto result = runProgram({"append", id, "--content", std::string(90'000, 'x')});
    expectOneSentence(result, "The ");
    _exit(HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(text(), "# Kept\n\nold text");
}

TEST_F(Trouble, AWriterThatHoldsTheLockTooLongIsNamed) {
  support::ForeignClient other(home.database());
  other.run("BEGIN IMMEDIATE");
  EXPECT_EQ(text(), "# Kept\n\nold text") << "a reader does not wait";
  expectOneSentence(runProgram({"append", id, "--content", "x"}), "in use by another program");
  other.run("ROLLBACK");
  EXPECT_EQ(text(), "# Kept\n\nold text");
}

TEST_F(Trouble, AReaderThatGoesAwayEndsTheOutputOnly) {
  for (int i = 0; i < 50; ++i) runProgram({"create", std::string(5000, 't')});
  const std::string command = std::string("'") + TAVICLI_PROGRAM + "' list | head -1 | wc -l";
  std::FILE* pipe = popen(command.c_str(), "r");
  char digit = 0;
  EXPECT_EQ(std::fread(&digit, 1, 1, pipe), 1U);
  EXPECT_EQ(digit, '1');
  EXPECT_EQ(pclose(pipe), 0);
  EXPECT_EQ(support::ForeignClient(home.database()).value("PRAGMA integrity_check"), "ok");
}

TEST_F(Trouble, ClosedStandardStreamsDoNotReachTheDatabase) {
  const std::string command =
      std::string("'") + TAVICLI_PROGRAM + "' append " + id + " --content more <&- >&- 2>&-";
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(support::ForeignClient(home.database()).value("PRAGMA integrity_check"), "ok");
  EXPECT_NE(text().find("more"), std::string::npos);
}

TEST_F(Trouble, AnUnwritableFolderIsStillRead) {
  if (geteuid() == 0) GTEST_SKIP() << "nothing is unwritable for the superuser";
  fs::permissions(home.database(), fs::perms::owner_read);
  fs::permissions(home.data(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(text(), "# Kept\n\nold text");
  expectOneSentence(runProgram({"append", id, "--content", "x"}), "read-only");
}

#ifdef FAILING_CALLS_LIBRARY
// Each call that changes a file fails once, at every point of every write.
TEST_F(Trouble, AFailingCallAtAnyPointLeavesTheStateBeforeOrAfter) {
  const std::vector<std::vector<std::string>> commands = {
      {"append", id, "--content", "appended"},
      {"create", "Another"},
      {"attachments", "add", id, "--filename", "a.bin"},
      {"attachments", "delete", id, "--filename", "a.bin"},
  };
  for (const auto& command : commands) {
    for (const int error : {ENOSPC, EIO}) {
      for (int call = 1;; ++call) {
        ASSERT_LT(call, 200);
        support::ForeignClient client(home.database());
        const std::string state =
            "SELECT (SELECT group_concat(text, '|') FROM note) || '|' || "
            "(SELECT group_concat(ifnull(filename, '')) FROM file)";
        const std::string before = client.value(state);
        setenv("LD_PRELOAD", FAILING_CALLS_LIBRARY, 1);
        setenv("FAIL_AT", std::to_string(call).c_str(), 1);
        setenv("FAIL_WITH", std::to_string(error).c_str(), 1);
        const auto result = runProgram(command, "bytes");
        unsetenv("LD_PRELOAD");
        unsetenv("FAIL_AT");
        EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 1) << result.exitCode;
        if (result.exitCode == 1) {
          EXPECT_EQ(client.value(state), before) << command[0] << " " << call;
          EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1)
              << result.errors;
        }
        EXPECT_EQ(client.value("PRAGMA integrity_check"), "ok");
        // The first run that meets no failure any more has done the work; the next error starts
        // over.
        if (result.exitCode == 0 && call > 60) break;
        if (result.exitCode == 0) {  // undo, so that the next call is tried on the same state
          client.run("DELETE FROM note WHERE title = 'Another'");
          client.run("UPDATE note SET text = '# Kept' || char(10, 10) || 'old text'");
          if (command[1] == "add") client.run("DELETE FROM file");
          if (command[1] == "delete")
            runProgram({"attachments", "add", id, "-f", "a.bin"}, "bytes");
        }
      }
      if (command[1] == "add") runProgram(command, "bytes");
    }
  }
}
#endif

}  // namespace

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
class FailingCalls : public Trouble {
 protected:
  /// Runs the command on a fresh copy of the notes; the call of that number fails.
  ProgramResult runFailing(const std::vector<std::string>& command, int call, int error) {
    fs::remove_all(home.data());
    fs::copy(home.path() / "pristine", home.data(), fs::copy_options::recursive);
    fs::remove(mark());
    setenv("LD_PRELOAD", FAILING_CALLS_LIBRARY, 1);
    setenv("FAIL_AT", std::to_string(call).c_str(), 1);
    setenv("FAIL_WITH", std::to_string(error).c_str(), 1);
    setenv("FAIL_MARK", mark().c_str(), 1);
    const ProgramResult result = runProgram(command, "bytes", SHARED_PROGRAM);
    unsetenv("LD_PRELOAD");
    return result;
  }
  bool hasFailed() const { return fs::exists(mark()); }
  fs::path mark() const { return home.path() / "mark"; }

  std::string state() {
    support::ForeignClient client(home.database());
    EXPECT_EQ(client.value("PRAGMA integrity_check"), "ok");
    return client.value(
        "SELECT (SELECT group_concat(text, '|') FROM note) || '|' || "
        "ifnull((SELECT group_concat(filename, '|') FROM file), '')");
  }
};

// Each call that changes a file fails once, at every point of every kind of write.
TEST_F(FailingCalls, LeaveTheStateBeforeOrAfter) {
  runProgram({"attachments", "add", id, "--filename", "old.bin"}, "old bytes");
  support::ForeignClient(home.database()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  const std::string before = state();
  fs::copy(home.data(), home.path() / "pristine", fs::copy_options::recursive);
  const std::vector<std::vector<std::string>> commands = {
      {"append", id, "--content", "appended"},
      {"create", "Another"},
      {"attachments", "add", id, "--filename", "new.bin"},
      {"attachments", "delete", id, "--filename", "old.bin"},
      {"trash", id},
  };
  for (const auto& command : commands) {
    for (const int error : {ENOSPC, EIO}) {
      int call = 1;
      for (;; ++call) {
        ASSERT_LT(call, 200);
        const ProgramResult result = runFailing(command, call, error);
        if (!hasFailed()) break;
        if (result.exitCode == 0) continue;  // the work was done; what failed was tidying up
        expectOneSentence(result, "");
        EXPECT_EQ(state(), before) << command[0] << ", call " << call;
      }
      EXPECT_GT(call, 3) << command[0];
    }
  }
}
#endif

}  // namespace

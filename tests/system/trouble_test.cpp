#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
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
    const auto made = runProgram({"create", "--fields", "id"}, kept);
    id = made.output.substr(0, made.output.find('\n'));
    ASSERT_FALSE(id.empty()) << made.errors;
  }

  std::string text() { return runProgram({"cat", id}).output; }

  std::size_t storedFiles() {
    const auto files = fs::recursive_directory_iterator(home.data() / "files");
    return static_cast<std::size_t>(std::count_if(
        begin(files), end(files), [](const auto& entry) { return entry.is_regular_file(); }));
  }

  void expectUntouched() {
    EXPECT_EQ(text(), kept);
    EXPECT_EQ(runProgram({"attachments", "list", id}).output, "");
    EXPECT_EQ(storedFiles(), 0U);
    EXPECT_TRUE(fs::is_empty(home.temporary()));
    EXPECT_EQ(support::ForeignClient(home.database()).value("PRAGMA integrity_check"), "ok");
  }

  static void expectOneSentence(const ProgramResult& result, const std::string& cause) {
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(result.errors.starts_with("Error: ")) << result.errors;
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_NE(result.errors.find(cause), std::string::npos) << result.errors;
  }

  static constexpr const char* kept = "# Kept\n\nold text";
  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  std::string id;
};

TEST_F(Trouble, AFileSizeLimitIsAFailedWriteAndNotADeadProgram) {
  EXPECT_TRUE(support::passesInItsOwnProcess([&] {
    const rlimit limit{100'000, 100'000};
    setrlimit(RLIMIT_FSIZE, &limit);
    const std::string large(90'000, 'x');
    expectOneSentence(runProgram({"append", id, "--content", large}), "File too large");
    expectOneSentence(runProgram({"attachments", "add", id, "-f", "a.bin"}, large + large),
                      "File too large");
  }));
  expectUntouched();
}

TEST_F(Trouble, AWriterThatHoldsTheLockTooLongIsNamed) {
  runProgram({"attachments", "add", id, "-f", "a.bin"}, "bytes");
  support::ForeignClient other(home.database());
  other.run("BEGIN IMMEDIATE; UPDATE note SET text = 'not yet'");
  const std::vector<std::string> readings[] = {
      {"cat", id},
      {"show", id},
      {"list"},
      {"list", "--count"},
      {"search", "kept"},
      {"search-in", id, "-s", "old"},
      {"tags"},
      {"pin"},
      {"attachments", "list", id},
      {"attachments", "save", id, "-f", "a.bin"},
  };
  for (const auto& reading : readings) {
    // A reader that waited would end as the writer below does.
    const auto answer = runProgram(reading);
    EXPECT_EQ(answer.exitCode, 0) << reading[0] << ": " << answer.errors;
    EXPECT_EQ(answer.output.find("not yet"), std::string::npos) << reading[0];
  }
  expectOneSentence(runProgram({"attachments", "add", id, "-f", "b.bin"}, "more"),
                    "in use by another program");
  other.run("ROLLBACK");
  EXPECT_EQ(runProgram({"attachments", "list", id}).output, "a.bin\t5\n");
  EXPECT_EQ(storedFiles(), 1U);
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
  fs::permissions(home.database(), fs::perms::owner_read);
  fs::permissions(home.data(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), [&] {
    EXPECT_EQ(text(), kept);
    expectOneSentence(runProgram({"append", id, "--content", "x"}), "read-only");
    expectOneSentence(runProgram({"attachments", "add", id, "-f", "a.bin"}, "x"), "read-only");
  }));
  fs::permissions(home.data(), fs::perms::owner_all);
  expectUntouched();
}

TEST_F(Trouble, AFolderOfAttachmentsThatCannotBeWrittenIsNamed) {
  fs::permissions(home.data() / "files", fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), [&] {
    expectOneSentence(runProgram({"attachments", "add", id, "-f", "a.bin"}, "x"),
                      "tavi/files/staged: Permission denied");
    EXPECT_EQ(text(), kept);
  }));
  fs::permissions(home.data() / "files", fs::perms::owner_all);
  expectUntouched();
}

TEST_F(Trouble, WithoutAHomeThereIsNoDatabase) {
  // Where there is no HOME the password database tells it. It must not tell that of whoever runs
  // this test, so only the superuser can try.
  const auto refused = [&] {
    for (const char* value : {static_cast<const char*>(nullptr), "", "relative"}) {
      value == nullptr ? unsetenv("HOME") : setenv("HOME", value, 1);
      expectOneSentence(runProgram({"list"}), "cannot open Tavi database");
      expectOneSentence(runProgram({"create", "Title"}), "cannot open Tavi database");
      EXPECT_EQ(runProgram({"--version"}).exitCode, 0);
    }
  };
  if (geteuid() == 0) {
    constexpr uid_t nobody = 65534;  // whose home does not exist
    constexpr uid_t unknown = 54321;
    EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), refused, nobody));
    EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), refused, unknown));
  }
  EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), [&] {
    unsetenv("HOME");
    setenv("XDG_DATA_HOME", (home.path() / ".local/share").c_str(), 1);
    EXPECT_EQ(text(), kept) << "where the data are can be told without a home";
  }));
}

TEST_F(Trouble, AHomeThatCannotBeWrittenIsSaidToHaveNoDatabase) {
  const fs::path closed = home.path() / "closed";
  fs::create_directory(closed);
  fs::permissions(closed, fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_TRUE(support::passesAsOrdinaryUser(home.path(), [&] {
    setenv("HOME", closed.c_str(), 1);
    expectOneSentence(runProgram({"create", "Title"}), "cannot open Tavi database");
  }));
  EXPECT_TRUE(fs::is_empty(closed));
}

// Also one that takes rights from the owner: it concerns the files of others.
TEST_F(Trouble, EverythingIsPrivateAndUsableUnderAnyUmask) {
  for (const mode_t mask : std::initializer_list<mode_t>{0000, 0022, 0077, 0177, 0777}) {
    fs::remove_all(home.path() / ".local");
    EXPECT_TRUE(support::passesAsOrdinaryUser(
        home.path(),
        [&] {
          umask(mask);
          for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(runProgram({"create", "Title", "--if-not-exists"}).exitCode, 0);
            EXPECT_EQ(runProgram({"attachments", "add", "-t", "title", "-f", "a"}, "x").exitCode,
                      0);
          }
        }))
        << std::oct << mask;
    for (const auto& entry : fs::recursive_directory_iterator(home.path() / ".local")) {
      const auto mode = static_cast<unsigned>(entry.status().permissions());
      EXPECT_EQ(mode & 077, 0U) << entry << std::oct << mask;
      if (entry.is_directory()) {
        EXPECT_EQ(mode, 0700U) << entry << std::oct << mask;
      }
    }
  }
}

#ifdef FAILING_CALLS_LIBRARY
using Command = std::vector<std::string>;

class FailingCalls : public Trouble, public testing::WithParamInterface<Command> {
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
        "SELECT (SELECT group_concat(text || trashed, '|') FROM note) || '|' || "
        "(SELECT group_concat(title, '|') FROM tag) || '|' || "
        "ifnull((SELECT group_concat(filename, '|') FROM file), '')");
  }
};

INSTANTIATE_TEST_SUITE_P(
    Writes, FailingCalls,
    testing::Values(Command{"append", "$", "--content", "appended"}, Command{"create", "Another"},
                    Command{"edit", "$", "--find", "old text", "--replace", "new text"},
                    Command{"tags", "rename", "tag", "other"},
                    Command{"attachments", "add", "$", "--filename", "new.bin"},
                    Command{"attachments", "delete", "$", "--filename", "old.bin"},
                    Command{"trash", "$"}));

// Each call that changes a file fails once, at every point of every kind of write.
TEST_P(FailingCalls, LeaveTheStateBeforeOrAfter) {
  runProgram({"attachments", "add", id, "--filename", "old.bin"}, "old bytes");
  runProgram({"create", "Tagged", "--tags", "tag"});
  support::ForeignClient(home.database()).run("PRAGMA wal_checkpoint(TRUNCATE)");
  const std::string before = state();
  fs::copy(home.data(), home.path() / "pristine", fs::copy_options::recursive);
  Command command = GetParam();
  std::replace(command.begin(), command.end(), std::string("$"), id);
  constexpr int none = 10'000;
  ASSERT_EQ(runFailing(command, none, EIO).exitCode, 0);
  const std::string after = state();
  const std::size_t filesAfter = storedFiles();
  for (const int error : {ENOSPC, EIO}) {
    const std::regex cause(error == ENOSPC ? "full|No space|cannot open"
                                           : "nput/output|cannot open");
    int call = 1;
    for (;; ++call) {
      SCOPED_TRACE(call);
      ASSERT_LT(call, 200);
      const ProgramResult result = runFailing(command, call, error);
      if (!hasFailed()) break;
      if (result.exitCode == 0) {  // what failed was tidying up, which the next command does
        EXPECT_EQ(state(), after);
        EXPECT_EQ(runProgram({"cat", id}).exitCode, 0);
        EXPECT_EQ(storedFiles(), filesAfter);
        continue;
      }
      expectOneSentence(result, "");
      EXPECT_TRUE(std::regex_search(result.errors, cause)) << result.errors;
      EXPECT_EQ(state(), before);
      EXPECT_EQ(runProgram({"cat", id}).exitCode, 0);  // this clears up
      EXPECT_EQ(storedFiles(), 1U);
    }
    EXPECT_GT(call, 3);
  }
}
#endif

}  // namespace

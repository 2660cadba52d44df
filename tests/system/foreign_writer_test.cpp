#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <future>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/foreign_client.h"
#include "support/program.h"
#include "support/throwaway_home.h"

// Runs the built program at the same time as another process that writes to the database with plain
// SQL.

namespace {

namespace fs = std::filesystem;
using support::ForeignClient;
using support::ProgramResult;
using support::runProgram;
using Arguments = std::vector<std::string>;

constexpr const char* conflict =
    "Error: Note was modified by another process during the operation — try again\n";

std::string firstLine(const std::string& text) {
  return text.substr(0, text.find('\n'));
}

std::size_t filesBelow(const fs::path& folder) {
  std::size_t count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    count += entry.is_regular_file();
  }
  return count;
}

#ifdef GATE_LIBRARY
/// Stops the program between its read and its save.
class Gate {
 public:
  explicit Gate(const fs::path& folder)
      : reached_(made(folder / "gate.reached")), pass_(made(folder / "gate.pass")) {
    setenv("GATE", (folder / "gate").c_str(), 1);
    setenv("LD_PRELOAD", GATE_LIBRARY, 1);
  }
  ~Gate() {
    unsetenv("LD_PRELOAD");
    unsetenv("GATE");
    close(reached_);
    close(pass_);
  }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

  /// Waits until the program stops there; false if it does not.
  bool isReached() const {
    pollfd waiting{reached_, POLLIN, 0};
    char byte = 0;
    return poll(&waiting, 1, 10'000) == 1 && read(reached_, &byte, 1) == 1;
  }
  void letPass() const {
    if (write(pass_, "", 1) != 1) throw std::runtime_error("the gate is broken");
  }

 private:
  static int made(const fs::path& pipe) {
    mkfifo(pipe.c_str(), 0600);
    return open(pipe.c_str(), O_RDWR | O_CLOEXEC);  // O_RDWR, so that opening does not block
  }
  int reached_;
  int pass_;
};

class ForeignWriter : public testing::Test {
 protected:
  /// A home with two notes, a new one for each case.
  struct Notes {
    Notes() {
      id = firstLine(runProgram({"create", "--fields", "id"}, "# Mine\n\nwords #tag").output);
      runProgram({"create", "Other", "--content", "text"});
      runProgram({"attachments", "add", id, "-f", "old.bin"}, "old");
      hash = firstLine(runProgram({"show", id, "--fields", "hash"}).output);
      // With a reader present the program need not recover the log's index, which takes the lock
      // too.
      reader.emplace(home.database()).run("SELECT 1 FROM note");
    }
    /// The contents of the database that users can see.
    std::string state() const {
      return ForeignClient(home.database())
          .value(
              "SELECT (SELECT group_concat(title || text || trashed || pinned, '|') FROM note) "
              "|| '|' || ifnull((SELECT group_concat(filename) FROM file), '') "
              "|| '|' || ifnull((SELECT group_concat(title) FROM tag), '') "
              "|| '|' || (SELECT count(*) FROM pinnedInTag)");
    }
    support::ThrowawayHome home;
    std::string id, hash;
    std::optional<ForeignClient> reader;
  };

  /// Runs the program; another process runs `sql` between its read and its save. `state` is the
  /// state after that.
  static ProgramResult runWith(const Notes& notes, Arguments arguments, const std::string& sql,
                               std::string& state) {
    for (std::string& argument : arguments) {
      if (argument == "$") argument = notes.id;
      if (argument == "$hash") argument = notes.hash;
    }
    const Gate gate(notes.home.path());
    auto run = std::async(std::launch::async,
                          [&] { return runProgram(arguments, "bytes", SHARED_PROGRAM); });
    if (!gate.isReached()) return run.get();
    ForeignClient(notes.home.database()).run(sql);
    state = notes.state();
    gate.letPass();
    return run.get();
  }

  const std::vector<Arguments> writes = {
      {"append", "$", "--content", "more"},
      {"edit", "$", "--find", "words", "--replace", "new"},
      {"overwrite", "$", "--content", "new", "--force"},
      {"overwrite", "$", "--content", "new", "--force", "--base", "$hash"},
      {"tags", "add", "$", "another"},
      {"tags", "remove", "$", "tag"},
      {"tags", "rename", "tag", "label"},
      {"tags", "delete", "tag"},
      {"pin", "add", "$", "global"},
      {"pin", "add", "$", "tag"},
      {"trash", "$"},
      {"attachments", "add", "$", "-f", "new.bin"},
      {"attachments", "delete", "$", "-f", "old.bin"},
  };
};

TEST_F(ForeignWriter, IsNeverOverwrittenByAWriteThatHasNotSeenIt) {
  const char* changes[] = {
      "UPDATE note SET text = 'theirs' WHERE title = 'Mine'",
      "UPDATE note SET archived = 1 WHERE title = 'Mine'",
      "INSERT OR REPLACE INTO note (uniqueIdentifier, title, text) "
      "SELECT uniqueIdentifier, title, 'theirs' FROM note WHERE title = 'Mine'",
      "DELETE FROM note WHERE title = 'Mine'",
  };
  for (const Arguments& arguments : writes) {
    for (const char* sql : changes) {
      const Notes notes;
      std::string theirs;
      const ProgramResult result = runWith(notes, arguments, sql, theirs);
      EXPECT_EQ(result.exitCode, 1) << arguments[0] << ": " << sql;
      EXPECT_EQ(result.errors, conflict) << arguments[0] << ": " << sql;
      EXPECT_EQ(notes.state(), theirs) << arguments[0] << ": " << sql;
      EXPECT_EQ(std::to_string(filesBelow(notes.home.data() / "files")),
                ForeignClient(notes.home.database()).value("SELECT count(*) FROM file"))
          << arguments[0] << ": " << sql;
    }
  }
}

TEST_F(ForeignWriter, DoesNotDisturbWritesToOtherNotes) {
  for (const Arguments& arguments : writes) {
    const Notes notes;
    std::string before;
    const ProgramResult result =
        runWith(notes, arguments, "UPDATE note SET text = 'theirs' WHERE title = 'Other'", before);
    EXPECT_EQ(result.errors, "") << arguments[0];
    EXPECT_EQ(result.exitCode, 0) << arguments[0];
    EXPECT_NE(notes.state(), before) << arguments[0];
    EXPECT_EQ(runProgram({"cat", "-t", "Other"}).output, "theirs") << arguments[0];
  }
}
#endif

// Several processes of ours and one other program increment a counter in one note, and one process
// attaches files to it. Every reported success must be in the note.
class Load : public testing::Test {
 protected:
  static constexpr int enough = 25;  ///< successes per process

  /// A process that tries until it has had enough successes. It exits with 0; on an error other
  /// than a conflict it prints the error and exits with 1.
  template <class Try>
  static pid_t worker(Try attempt) {
    const pid_t process = fork();
    if (process != 0) return process;
    for (int successes = 0, tries = 0; successes < enough;) {
      const ProgramResult result = attempt(successes);
      if (result.exitCode == 0) {
        ++successes;
      } else if (!isRefusal(result) || ++tries > 10'000) {
        std::fprintf(stderr, "%s", result.errors.c_str());
        _exit(1);
      }
    }
    _exit(0);
  }

  static bool isRefusal(const ProgramResult& result) {
    return result.errors == conflict ||
           result.errors.starts_with("Error: Note has changed since last read") ||
           result.errors.starts_with("Error: String not found");  // the counter has changed
  }

  static std::string counted(const std::string& text) {
    return "count: " + std::to_string(std::stoi(text.substr(7)) + 1);
  }

  support::ThrowawayHome home;
};

TEST_F(Load, MakesTheDatabaseOnceHoweverManyComeFirst) {
  constexpr int processes = 8;
  for (int round = 0; round < 10; ++round) {
    const support::ThrowawayHome fresh;
    for (int i = 0; i < processes; ++i) {
      if (fork() == 0) _exit(runProgram({"create", "Title"}).exitCode);
    }
    int status = 0;
    while (wait(&status) > 0) EXPECT_EQ(status, 0);
    EXPECT_EQ(runProgram({"list", "--count"}).output, std::to_string(processes) + "\n");
  }
}

TEST_F(Load, LosesNoChangeOfSeveralProcessesAndAStranger) {
  const std::string id = firstLine(runProgram({"create", "--fields", "id"}, "count: 0").output);
  const pid_t workers[] = {
      worker([&](int) {
        const std::string hash = firstLine(runProgram({"show", id, "--fields", "hash"}).output);
        const std::string text = runProgram({"cat", id}).output;
        const std::string rest = text.substr(firstLine(text).size());
        return runProgram({"overwrite", id, "--base", hash}, counted(text) + rest);
      }),
      worker([&](int) {
        const std::string count = firstLine(runProgram({"cat", id}).output);
        return runProgram({"edit", id, "--find", count, "--word", "--replace", counted(count)});
      }),
      worker([&](int number) {
        return runProgram({"attachments", "add", id, "-f", std::to_string(number) + ".bin"}, "x");
      }),
  };
  ForeignClient stranger(home.database());
  for (int i = 0; i < enough; ++i) {  // no more, since it is far faster than starting a process
    usleep(20'000);
    stranger.run(
        "UPDATE note SET text = 'count: ' || (CAST(substr(text, 8) AS INTEGER) + 1) || "
        "substr(text, instr(text || char(10), char(10)))");
  }
  for (const pid_t process : workers) {
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, 0), process);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(firstLine(runProgram({"cat", id}).output), "count: " + std::to_string(3 * enough));
  EXPECT_EQ(stranger.value("SELECT count(*) FROM file"), std::to_string(enough));
  EXPECT_EQ(filesBelow(home.data() / "files"), static_cast<std::size_t>(enough));
  EXPECT_EQ(stranger.value("PRAGMA integrity_check"), "ok");
}

}  // namespace

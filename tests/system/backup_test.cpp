// Copies of the database are complete: the single file when no program has it open, and each recipe
// of docs/database.md.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/foreign_client.h"
#include "support/program.h"
#include "support/throwaway_home.h"

namespace {

namespace fs = std::filesystem;
using support::ForeignClient;
using support::runProgram;

class Backup : public testing::Test {
 protected:
  std::string create(const std::string& title) {
    const auto made = runProgram({"create", title, "--fields", "id"});
    EXPECT_EQ(made.exitCode, 0) << made.errors;
    return made.output.substr(0, made.output.find('\n'));
  }
  std::string titles() {
    const auto list = runProgram({"list", "--fields", "title", "--sort", "title:asc"});
    return list.output + list.errors;
  }
  std::uintmax_t logSize() const {
    std::error_code none;
    const auto size = fs::file_size(log(), none);
    return none ? 0 : size;
  }
  fs::path log() const { return home.database().string() + "-wal"; }

  /// The number of notes in a copy of the database file alone.
  std::string notesInACopy() const {
    const fs::path copy = home.path() / "copy.sqlite";
    fs::copy_file(home.database(), copy, fs::copy_options::overwrite_existing);
    return ForeignClient(copy).value("SELECT count(*) FROM note");
  }

  /// Leaves a log behind like a crash: a process that reads while the program writes is killed.
  void leaveLog(const std::string& title) {
    EXPECT_TRUE(support::passesInItsOwnProcess([&] {
      auto* reader = new ForeignClient(home.database());
      reader->run("BEGIN; SELECT count(*) FROM note");
      create(title);
      std::_Exit(testing::Test::HasFailure() ? 1 : 0);
    }));
    EXPECT_GT(logSize(), 0U);
  }

  support::ThrowawayHome home;
};

TEST_F(Backup, OfTheOneFileIsWholeAfterEveryCommand) {
  const std::string id = create("first");
  const std::vector<std::vector<std::string>> commands = {
      {"create", "second"},
      {"append", id, "--content", "more"},
      {"edit", id, "--find", "more", "--replace", "less"},
      {"tags", "add", id, "a"},
      {"tags", "rename", "a", "b"},
      {"attachments", "add", id, "-f", "a.bin"},
      {"attachments", "delete", id, "-f", "a.bin"},
      {"pin", "add", id, "global"},
      {"trash", id},
      {"list"},
      {"search", "first"},
  };
  for (const auto& command : commands) {
    runProgram(command, "bytes");
    EXPECT_EQ(logSize(), 0U) << command[0];
  }
  fs::remove(log());
  EXPECT_EQ(notesInACopy(), "2");
}

TEST_F(Backup, OfTheOneFileIsWholeWhenSeveralCloseAtOnce) {
  create("first");
  for (int round = 0; round < 20; ++round) {
    std::vector<std::thread> writers;
    for (int i = 0; i < 4; ++i) {
      writers.emplace_back([i] {
        runProgram(i == 0 ? std::vector<std::string>{"list"}
                          : std::vector<std::string>{"create", "n"});
      });
    }
    for (std::thread& writer : writers) writer.join();
    ASSERT_EQ(logSize(), 0U) << round;
  }
  EXPECT_EQ(notesInACopy(), "61");
}

TEST_F(Backup, OfTheOneFileIsWholeOnceACommandHasRunAfterACrash) {
  for (const char* command : {"list", "tags", "create"}) {
    create("before");
    leaveLog("in the log");
    std::vector<std::string> line = {command};
    if (line[0] == "create") line.emplace_back("after");
    EXPECT_EQ(runProgram(line).exitCode, 0);
    EXPECT_EQ(logSize(), 0U) << command;
  }
  EXPECT_EQ(notesInACopy(), "7");
}

TEST_F(Backup, RestoredBesideTheLogOfAnotherStateIsRefusedAndBothStay) {
  create("first");
  const fs::path older = home.path() / "older";
  fs::copy_file(home.database(), older);
  create("second");
  leaveLog("third");
  const fs::path right = home.path() / "right";
  fs::rename(home.database(), right);
  fs::copy_file(log(), home.path() / "log");
  const auto bytes = [](const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
  };
  for (const bool missing : {false, true}) {
    fs::remove(home.database());
    if (!missing) fs::copy_file(older, home.database());
    for (const auto& line : {std::vector<std::string>{"list"}, {"create", "x"}, {"tags"}}) {
      const auto result = runProgram(line);
      EXPECT_EQ(result.exitCode, 1);
      EXPECT_EQ(result.output, "");
      EXPECT_TRUE(result.errors.starts_with("Error: The Tavi database does not belong to the log"))
          << result.errors;
    }
    for (int round = 0; round < 10; ++round) {  // each must be alone when it looks
      std::vector<std::thread> readers;
      for (int i = 0; i < 4; ++i) {
        readers.emplace_back([] { EXPECT_EQ(runProgram({"list"}).exitCode, 1); });
      }
      for (std::thread& reader : readers) reader.join();
    }
    EXPECT_EQ(fs::exists(home.database()), !missing);
    EXPECT_EQ(bytes(missing ? older : home.database()), bytes(older));
    EXPECT_EQ(bytes(log()), bytes(home.path() / "log"));
  }
  fs::rename(right, home.database());
  EXPECT_EQ(titles(), "first\nsecond\nthird\n");
  EXPECT_EQ(logSize(), 0U);
}

/// A recipe of the page: its heading, and the shell commands to make a copy and to restore it.
struct Recipe {
  std::string name, backup, restore;
};

std::vector<Recipe> recipes() {
  std::ifstream page(DATABASE_PAGE);
  std::vector<Recipe> recipes;
  std::vector<std::string> blocks;
  std::string name, line;
  bool inside = false;
  while (std::getline(page, line)) {
    if (line.starts_with("### ")) {
      name = line.substr(4);
      blocks.clear();
    } else if (line == "```sh") {
      inside = true;
      blocks.emplace_back();
    } else if (line == "```" && inside) {
      inside = false;
      if (blocks.size() == 2) recipes.push_back({name, blocks[0], blocks[1]});
    } else if (inside) {
      blocks.back() += line + "\n";
    }
  }
  return recipes;
}

TEST_F(Backup, ByEachRecipeOfTheDocumentationComesBackWhole) {
  ASSERT_GE(recipes().size(), 4U);
  for (const Recipe& recipe : recipes()) {
    SCOPED_TRACE(recipe.name);
    const support::ThrowawayHome fresh;
    const auto shell = [&](const std::string& lines) {
      std::ofstream(fresh.path() / "script") << lines;
      return runProgram({"-e", (fresh.path() / "script").string()}, "", "/bin/sh");
    };
    const auto value = [&](const char* sql) { return ForeignClient(fresh.database()).value(sql); };
    const std::string id = create("kept #work");
    ASSERT_EQ(runProgram({"attachments", "add", id, "-f", "a.bin"}, "bytes").exitCode, 0);
    const std::string before = runProgram({"cat", id}).output;

    const auto backup = shell(recipe.backup);
    ASSERT_EQ(backup.exitCode, 0) << backup.errors;
    create("made since");
    ASSERT_EQ(runProgram({"attachments", "delete", id, "-f", "a.bin"}).exitCode, 0);
    const auto restore = shell(recipe.restore);
    ASSERT_EQ(restore.exitCode, 0) << restore.errors;

    EXPECT_EQ(titles(), "kept #work\n");
    EXPECT_EQ(runProgram({"cat", id}).output, before);
    EXPECT_EQ(runProgram({"attachments", "save", id, "-f", "a.bin"}).output, "bytes");
    EXPECT_EQ(runProgram({"append", id, "--content", "written to the copy"}).exitCode, 0);
    EXPECT_EQ(runProgram({"search", "written", "--count"}).output, "1\n");
    EXPECT_EQ(runProgram({"tags"}).output, "#work\n");
    EXPECT_EQ(value("PRAGMA journal_mode"), "wal");
    EXPECT_EQ(value("PRAGMA user_version"), "4");
    EXPECT_EQ(value("PRAGMA integrity_check"), "ok");
  }
}

// While another process reads the database, its journal mode stays as it is, and the program works.
TEST_F(Backup, InAnotherJournalModeIsUsedAsItIsWhileSomebodyReadsIt) {
  create("kept");
  ForeignClient(home.database()).run("PRAGMA journal_mode = DELETE");
  {
    ForeignClient reader(home.database());
    reader.run("BEGIN; SELECT count(*) FROM note");
    EXPECT_EQ(titles(), "kept\n");
    EXPECT_EQ(reader.value("PRAGMA journal_mode"), "delete");
  }
  EXPECT_EQ(titles(), "kept\n");
  EXPECT_EQ(ForeignClient(home.database()).value("PRAGMA journal_mode"), "wal");
}

}  // namespace

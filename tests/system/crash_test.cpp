#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <set>
#include <string>

#include "support/foreign_client.h"
#include "support/program.h"
#include "support/rounds.h"
#include "support/throwaway_home.h"

// Every writing command, killed at random moments, leaves the state before or the state after; what
// was acknowledged is there, and no file without its row outlives the next open.

namespace {

namespace fs = std::filesystem;
using support::runAndKill;
using support::runProgram;

constexpr int taggedNotes = 40;

class Crash : public testing::Test {
 protected:
  void SetUp() override {
    note = created("# Log\n\nentries\n");
    auto shortest = std::chrono::steady_clock::duration::max();  // others may be at work here
    for (int i = 0; i < 5; ++i) {
      const auto start = std::chrono::steady_clock::now();
      created("# Timed");
      shortest = std::min(shortest, std::chrono::steady_clock::now() - start);
    }
    usual =
        static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(shortest).count());
    counter = created("count: 0");
    for (int i = 0; i < taggedNotes; ++i) created("# Tagged\ntext #left and more");
    std::string bytes(2'000'000, 'x');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 31 % 251);
    attachment = bytes;
    std::ofstream(home.path() / "input", std::ios::binary) << bytes;
  }

  std::string created(const std::string& text) {
    const auto made = runProgram({"create", "--fields", "id"}, text);
    return made.output.substr(0, made.output.find('\n'));
  }

  /// The exit code, or -1 when the program was killed before its end.
  int attempt(const std::vector<std::string>& arguments) {
    const int longest = random() % 4 == 0 ? 8 * usual : usual + usual / 2;
    const int code = runAndKill(arguments, home.path() / "input",
                                static_cast<int>(random() % static_cast<unsigned>(longest)));
    ++(code == 0 ? acknowledged : killed);
    EXPECT_LE(code, 0);
    return code;
  }

  std::string value(const std::string& sql) {
    return support::ForeignClient(home.database()).value(sql);
  }

  void create(int round) {
    const std::string title = "made " + std::to_string(round);
    const int code = attempt({"create", title, "--content", "body"});
    const std::string made = value("SELECT count(*) FROM note WHERE title = '" + title +
                                   "' AND text = '# " + title + "' || char(10, 10) || 'body'");
    if (code == 0) {
      EXPECT_EQ(made, "1");
    }
    EXPECT_EQ(made, value("SELECT count(*) FROM note WHERE title = '" + title + "'"));
  }

  void append(int round) {
    const std::string entry = "entry " + std::to_string(round) + ".";
    const int code = attempt({"append", note, "--content", entry});
    const bool there = runProgram({"cat", note}).output.find(entry) != std::string::npos;
    EXPECT_TRUE(there || code != 0) << entry;
  }

  void edit() {
    const std::string next = std::to_string(count + 1);
    const int code = attempt({"edit", counter, "--find", "count: " + std::to_string(count),
                              "--replace", "count: " + next});
    const std::string now = runProgram({"cat", counter}).output;
    if (code == 0) {
      EXPECT_EQ(now, "count: " + next);
    }
    if (now == "count: " + next) {
      ++count;
    } else {
      EXPECT_EQ(now, "count: " + std::to_string(count));
    }
  }

  void rename() {
    const std::string next = tag == "left" ? "right" : "left";
    const int code = attempt({"tags", "rename", tag, next});
    const std::string withTag =
        value("SELECT count(*) FROM note WHERE text LIKE '%#" + tag + " and%'");
    const std::string withNext =
        value("SELECT count(*) FROM note WHERE text LIKE '%#" + next + " and%'");
    const bool before = withTag == std::to_string(taggedNotes) && withNext == "0";
    const bool after = withNext == std::to_string(taggedNotes) && withTag == "0";
    EXPECT_TRUE(code == 0 ? after : before || after) << withTag << " and " << withNext;
    if (after) tag = next;
    EXPECT_EQ(
        value("SELECT count(*) FROM noteTag JOIN tag ON tag.id = tag WHERE title = '" + tag + "'"),
        std::to_string(taggedNotes));
  }

  void attach(int round) {
    const std::string name = "file " + std::to_string(round) + ".bin";
    if (attempt({"attachments", "add", note, "--filename", name}) == 0) {
      EXPECT_TRUE(attachments().contains(name));
    }
  }

  void detach() {
    const std::set<std::string> names = attachments();
    if (names.empty()) return;
    if (attempt({"attachments", "delete", note, "--filename", *names.begin()}) == 0) {
      EXPECT_FALSE(attachments().contains(*names.begin()));
    }
  }

  std::set<std::string> attachments() {
    std::set<std::string> names;
    const std::string list =
        runProgram({"attachments", "list", note, "--fields", "filename"}).output;
    for (std::size_t begin = 0; begin < list.size();) {
      const std::size_t end = list.find('\n', begin);
      names.insert(list.substr(begin, end - begin));
      begin = end + 1;
    }
    return names;
  }

  void checkEverything() {
    EXPECT_EQ(value("PRAGMA integrity_check"), "ok");
    // What those that were killed left in the folder for the passing goes with the next of its
    // kind.
    for (const char* command : {"add", "delete"}) {
      const std::vector<std::string> line = {"attachments", command, note, "--filename",
                                             "last.bin"};
      EXPECT_EQ(runProgram(line, "bytes").exitCode, 0);
    }
    const std::string text = runProgram({"cat", note}).output;
    const std::set<std::string> names = attachments();  // this opens the database, and so sweeps
    for (const std::string& name : names) {
      EXPECT_EQ(runProgram({"attachments", "save", note, "--filename", name}).output, attachment)
          << name;
      std::string link = name;
      link.replace(link.find(' '), 1, "%20");
      EXPECT_NE(text.find(link), std::string::npos) << link << " in\n" << text;
    }
    std::size_t stored = 0;
    for (const auto& entry : fs::recursive_directory_iterator(home.data() / "files")) {
      if (entry.is_regular_file()) ++stored;
    }
    EXPECT_EQ(stored, names.size()) << "files without a row";
    EXPECT_TRUE(fs::is_empty(home.temporary())) << "nothing is left in the folder for the passing";
    EXPECT_EQ(value("SELECT count(*) FROM file WHERE storedName IN (SELECT storedName FROM "
                    "removedFile)"),
              "0");
  }

  std::mt19937 random{77};
  int usual = 0;  ///< how long a command takes here, in microseconds
  support::ThrowawayHome home;
  std::string note;
  std::string counter;
  std::string attachment;
  std::string tag = "left";
  int count = 0;
  int acknowledged = 0;
  int killed = 0;
};

TEST_F(Crash, LeavesTheStateBeforeOrAfter) {
  const int rounds = support::rounds(300);
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    switch (random() % 6) {
      case 0:
        create(round);
        break;
      case 1:
        append(round);
        break;
      case 2:
        edit();
        break;
      case 3:
        rename();
        break;
      case 4:
        attach(round);
        break;
      default:
        detach();
    }
    if (round % 10 == 9) checkEverything();
  }
  RecordProperty("killed", killed);
  EXPECT_GT(acknowledged, rounds / 20) << "some must come through";
  EXPECT_GT(killed, rounds / 20) << "some must be hit";
}

}  // namespace

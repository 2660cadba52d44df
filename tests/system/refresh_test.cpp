#include <gtest/gtest.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/refresh_bridge.h"
#include "support/program.h"
#include "support/throwaway_home.h"

// The signal to the application, from the program as it is built to a listener in this process:
// once for each run that succeeded, and never after one that failed.

namespace {

namespace fs = std::filesystem;
using support::runProgram;
using Arguments = std::vector<std::string>;

/// Counts how often a file was touched. It watches the folder as well, since the system drops an
/// event that is the same as the one before it.
class Touches {
 public:
  explicit Touches(const fs::path& file) : inotify_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    constexpr std::uint32_t changes = IN_ATTRIB | IN_MODIFY | IN_CREATE | IN_MOVED_TO;
    inotify_add_watch(inotify_, file.parent_path().c_str(), changes);
    file_ = inotify_add_watch(inotify_, file.c_str(), changes);
    if (file_ < 0) throw std::runtime_error("no signal file");
  }
  ~Touches() { close(inotify_); }
  Touches(const Touches&) = delete;
  Touches& operator=(const Touches&) = delete;

  /// Since the last call.
  int count() {
    int touches = 0;
    alignas(inotify_event) char buffer[65536];
    for (ssize_t length; (length = read(inotify_, buffer, sizeof buffer)) > 0;) {
      for (const char* at = buffer; at < buffer + length;) {
        const auto* event = reinterpret_cast<const inotify_event*>(at);
        touches += event->wd == file_;
        at += sizeof(inotify_event) + event->len;
      }
    }
    return touches;
  }

 private:
  int inotify_;
  int file_ = -1;
};

class Refresh : public testing::Test {
 protected:
  Refresh() : path_(std::getenv("PATH")) {
    fs::create_directory(home.path() / "bin");
    std::ofstream(home.path() / "bin/xdg-open") << "#!/bin/sh\n";
    fs::permissions(home.path() / "bin/xdg-open", fs::perms::owner_all);
    setenv("PATH", (home.path() / "bin").c_str(), 1);
    id = created("# Mars\n\nred dust #planet");
    other = created("# Venus\n#star");
    runProgram({"attachments", "add", id, "-f", "map.txt"}, "bytes");
  }
  ~Refresh() override { setenv("PATH", path_.c_str(), 1); }

  static std::string created(const std::string& text) {
    const auto made = runProgram({"create", "--fields", "id"}, text);
    return made.output.substr(0, made.output.find('\n'));
  }
  static std::string shown(const Arguments& arguments) {
    std::string line;
    for (const std::string& argument : arguments) line += argument + " ";
    return line;
  }

  support::ThrowawayHome home;
  std::string id, other;
  const fs::path signal = home.data() / "net.kelvaro.tavi.cli.didRequestRefresh";

 private:
  std::string path_;
};

TEST_F(Refresh, ReachesAnotherProcess) {
  int received = 0;
  tavi::TaviCLIBridge bridge([&] { ++received; });
  for (int run = 1; run <= 3; ++run) {
    EXPECT_EQ(runProgram({"append", id, "-c", "more"}).exitCode, 0);
    pollfd waiting{bridge.descriptor(), POLLIN, 0};
    ASSERT_EQ(poll(&waiting, 1, 10'000), 1);
    bridge.deliver();
    EXPECT_EQ(received, run);
  }
}

TEST_F(Refresh, GoesOutOnceForEachRunThatSucceeded) {
  const std::pair<Arguments, std::string> runs[] = {
      {{"create", "Phobos"}, ""},
      {{"append", id, "-c", "storms"}, ""},
      {{"edit", id, "--find", "red", "--replace", "rust"}, ""},
      {{"edit", id, "--find", "rust", "--replace", "red", "--find", "dust", "--replace", "d"}, ""},
      {{"overwrite", other, "-c", "# Venus\n#star"}, ""},
      {{"tags", "add", id, "work", "trip plan"}, ""},
      {{"tags", "remove", id, "work"}, ""},
      {{"tags", "rename", "planet", "world"}, ""},
      {{"tags", "rename", "nosuch", "thing"}, ""},
      {{"tags", "rename", "star", "world", "--force"}, ""},
      {{"pin", "add", id, "global", "world"}, ""},
      {{"pin", "remove", id, "world", "global"}, ""},
      {{"tags", "delete", "world"}, ""},
      {{"trash", id}, ""},
      {{"trash", id}, ""},
      {{"archive", id}, ""},
      {{"restore", id}, ""},
      {{"attachments", "add", id, "-f", "b.txt"}, "bytes"},
      {{"attachments", "delete", id, "-f", "b.txt"}, ""},
      {{"open", id}, ""},
      {{"cat", id}, ""},
      {{"show", id}, ""},
      {{"list"}, ""},
      {{"search", "red"}, ""},
      {{"search-in", id, "-s", "red"}, ""},
      {{"tags"}, ""},
      {{"pin"}, ""},
      {{"attachments", "list", id}, ""},
      {{"attachments", "save", id, "-f", "map.txt"}, ""},
      {{"mcp-server"}, ""},
  };
  Touches touches(signal);
  for (const auto& [arguments, input] : runs) {
    const auto result = runProgram(arguments, input);
    EXPECT_EQ(result.exitCode, 0) << shown(arguments) << result.errors;
    EXPECT_EQ(touches.count(), 1) << shown(arguments);
  }
}

TEST_F(Refresh, DoesNotGoOutForARunThatFailedOrDidNothing) {
  const std::pair<Arguments, int> runs[] = {
      {{"create", " "}, 64},
      {{"append", "nosuch", "-c", "x"}, 1},
      {{"edit", id, "--find", "nowhere", "--replace", "x"}, 1},
      {{"edit", id, "--find", "red", "--replace", "x", "--find", "no", "--replace", "x"}, 1},
      {{"overwrite", id, "-c", "x", "--base", "0000000"}, 1},
      {{"overwrite", id, "-c", "x"}, 1},  // it would lose an attachment
      {{"tags", "add", "nosuch", "x"}, 1},
      {{"tags", "remove", "nosuch", "x"}, 1},
      {{"tags", "rename", "planet", "star"}, 1},
      {{"tags", "delete", "#"}, 64},
      {{"pin", "add", id, "nosuch"}, 1},
      {{"pin", "remove", "nosuch", "global"}, 1},
      {{"trash", "nosuch"}, 1},
      {{"archive", "nosuch"}, 1},
      {{"restore", "-t", "nosuch"}, 1},
      {{"attachments", "add", id, "-f", "b.txt"}, 64},  // no data
      {{"attachments", "delete", id, "-f", "b.txt"}, 1},
      {{"open", "-t", "nosuch"}, 1},
      {{"cat", "nosuch"}, 1},
      {{"list", "--bogus"}, 64},
      {{"--version"}, 0},
      {{"--help"}, 0},
      {{"help", "append"}, 0},
      {{}, 0},
  };
  Touches touches(signal);
  for (const auto& [arguments, exitCode] : runs) {
    EXPECT_EQ(runProgram(arguments).exitCode, exitCode) << shown(arguments);
    EXPECT_EQ(touches.count(), 0) << shown(arguments);
  }
}

TEST_F(Refresh, GoesOutOfTheServerAfterEachSuccessfulWriteAndAtItsEnd) {
  struct Call {
    std::string tool, arguments;
    int signals;
  };
  // With $ for the note's id. What fails has "nosuch" in it.
  const Call calls[] = {
      {"create_note", R"({"title":"Phobos"})", 1},
      {"create_note", R"({"title":"nosuch","ifNotExists":3})", 0},
      {"append_to_note", R"({"id":"$","content":"storms"})", 1},
      {"append_to_note", R"({"id":"nosuch","content":"storms"})", 0},
      {"edit_note", R"({"id":"$","edits":[{"find":"red","replace":"rust"}]})", 1},
      {"edit_note", R"({"id":"$","edits":[{"find":"nosuch","replace":"rust"}]})", 0},
      {"overwrite_note", R"({"id":"$","content":"x","baseHash":"nosuch"})", 0},
      {"add_tags", R"({"id":"$","tags":["work"]})", 1},
      {"add_tags", R"({"id":"nosuch","tags":["work"]})", 0},
      {"rename_tag", R"({"old":"work","new":"job"})", 1},
      {"rename_tag", R"({"old":"job","new":"planet","nosuch":1})", 0},
      {"add_pins", R"({"id":"$","targets":["global","job"]})", 1},
      {"add_pins", R"({"id":"$","targets":["global","nosuch"]})", 0},
      {"remove_pins", R"({"id":"$","targets":["global"]})", 1},
      {"remove_pins", R"({"id":"$","targets":["nosuch"]})", 0},
      {"remove_tags", R"({"id":"$","tags":["job"]})", 1},
      {"remove_tags", R"({"id":"nosuch","tags":["job"]})", 0},
      {"delete_tag", R"({"tag":"planet"})", 1},
      {"delete_tag", R"({"nosuch":"tag"})", 0},
      {"archive_note", R"({"id":"$"})", 1},
      {"archive_note", R"({"id":"nosuch"})", 0},
      {"trash_note", R"({"id":"$"})", 1},
      {"trash_note", R"({"id":"nosuch"})", 0},
      {"restore_note", R"({"id":"$"})", 1},
      {"restore_note", R"({"id":"nosuch"})", 0},
      {"delete_attachment", R"({"id":"$","filename":"map.txt"})", 1},
      {"delete_attachment", R"({"id":"$","filename":"nosuch"})", 0},
      {"get_note", R"({"id":"$"})", 0},
      {"list_notes", "{}", 0},
      {"search_notes", R"({"query":"rust"})", 0},
      {"search_in_note", R"({"id":"$","string":"rust"})", 0},
      {"read_note_content", R"({"id":"$"})", 0},
      {"list_tags", "{}", 0},
      {"list_pins", "{}", 0},
      {"list_attachments", R"({"id":"$"})", 0},
      {"read_attachment", R"({"id":"$","filename":"nosuch"})", 0},
      {"open_note", R"({"id":"$"})", 0},
  };
  Touches touches(signal);
  for (Call call : calls) {
    if (const auto at = call.arguments.find('$'); at != std::string::npos) {
      call.arguments.replace(at, 1, id);
    }
    const auto answer = runProgram(
        {"mcp-server"}, R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":")" +
                            call.tool + R"(","arguments":)" + call.arguments + "}}\n");
    const bool failed = answer.output.find(R"("isError":true)") != std::string::npos;
    EXPECT_EQ(failed, call.arguments.find("nosuch") != std::string::npos) << answer.output;
    EXPECT_EQ(touches.count(), call.signals + 1) << call.tool << call.arguments;
  }
  const std::string hash = runProgram({"show", id, "--fields", "hash"}).output.substr(0, 7);
  touches.count();
  runProgram({"mcp-server"},
             R"({"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"overwrite_note",)"
             R"("arguments":{"id":")" +
                 id + R"(","content":"x","baseHash":")" + hash + "\"}}}\n");
  EXPECT_EQ(touches.count(), 2);
}

}  // namespace

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

// The refresh signal from the built program to a listener in this process: once for each successful
// run, and never for a failed one.

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
  tavi::TaviCLIBridge bridge([&] { ++received; }), silent(nullptr);
  for (int run = 1; run <= 3; ++run) {
    EXPECT_EQ(runProgram({"append", id, "-c", "more"}).exitCode, 0);
    pollfd waiting{bridge.descriptor(), POLLIN, 0};
    ASSERT_EQ(poll(&waiting, 1, 10'000), 1);
    bridge.deliver();
    EXPECT_EQ(received, run);
    EXPECT_NO_THROW(silent.deliver());
  }
}

TEST_F(Refresh, GoesOutOnceForEachRunThatSucceeded) {
  const std::pair<Arguments, std::string> runs[] = {
      {{"create", "Phobos"}, ""},
      {{"append", id, "-c", "storms"}, ""},
      {{"tags", "rename", "nosuch", "thing"}, ""},
      {{"trash", id}, ""},
      {{"trash", id}, ""},
      {{"attachments", "add", id, "-f", "b.txt"}, "bytes"},
      {{"open", id}, ""},
      {{"cat", id}, ""},
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
      {{"create", " "}, 64},  {{"overwrite", id, "-c", "x"}, 1},  // it would lose an attachment
      {{"cat", "nosuch"}, 1}, {{"list", "--bogus"}, 64},         {{"--version"}, 0},
      {{"--help"}, 0},        {{"help", "append"}, 0},           {{}, 0},
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
  // $ stands for the note's id. Calls with "nosuch" fail.
  const Call calls[] = {
      {"create_note", R"({"title":"Phobos"})", 1},
      {"create_note", R"({"title":"nosuch","ifNotExists":3})", 0},
      {"overwrite_note", R"({"id":"$","content":"x","baseHash":"nosuch"})", 0},
      {"add_pins", R"({"id":"$","targets":["global","planet"]})", 1},
      {"add_pins", R"({"id":"$","targets":["global","nosuch"]})", 0},
      {"get_note", R"({"id":"$"})", 0},
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
}

}  // namespace

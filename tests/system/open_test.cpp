#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/program.h"
#include "support/throwaway_home.h"

// `open` runs `xdg-open` with its URL; these tests replace that program.

namespace {

namespace fs = std::filesystem;
using support::runProgram;

class Open : public testing::Test {
 protected:
  Open() : path_(std::getenv("PATH")) {
    fs::create_directory(home.path() / "bin");
    fs::create_symlink("/bin/cat", home.path() / "bin/cat");
    setenv("PATH", (home.path() / "bin").c_str(), 1);
    setenv("LOG", (home.path() / "log").c_str(), 1);
    const auto made = runProgram({"create", "Mars", "--fields", "id"});
    id = made.output.substr(0, made.output.find('\n'));
  }
  ~Open() override { setenv("PATH", path_.c_str(), 1); }

  void installOpener(const std::string& script) const {
    const fs::path program = home.path() / "bin/xdg-open";
    std::ofstream(program) << "#!/bin/sh\n" << script;
    fs::permissions(program, fs::perms::owner_all);
  }
  std::string log() const {
    std::ifstream file(home.path() / "log");
    return {std::istreambuf_iterator<char>(file), {}};
  }
  void expectRefused() const {
    const auto result = runProgram({"open", id});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.output + result.errors, "Error: Could not open Tavi. Is the app installed?\n");
  }

  support::ThrowawayHome home;
  std::string id;

 private:
  std::string path_;
};

TEST_F(Open, HandsOverTheURLAndNoStreams) {
  installOpener(R"({ echo "$#|$1"; cat; } > "$LOG"; echo output; echo errors >&2)");
  const auto opened = runProgram(
      {"open", "-t", "mars", "--float", "--edit", "--new-window", "--header", "a b&c=$(id)"},
      "input that is not for it");
  EXPECT_EQ(opened.exitCode, 0);
  EXPECT_EQ(opened.output + opened.errors, "");
  EXPECT_EQ(log(), "1|tavi://x-callback-url/open-note?id=" + id +
                       "&header=a%20b%26c%3D$(id)&edit=yes&new_window=yes&float=yes\n");
}

TEST_F(Open, SaysNoWhenTheDesktopDoes) {
  expectRefused();  // no xdg-open in PATH
  for (const char* script : {"exit 1", "exit 4", "kill -9 $$"}) {
    installOpener(script);
    expectRefused();
  }
  fs::permissions(home.path() / "bin/xdg-open", fs::perms::owner_read);
  expectRefused();
}

}  // namespace

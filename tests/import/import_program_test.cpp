#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/program.h"
#include "support/throwaway_home.h"

namespace tavi {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ImportProgram : public testing::Test {
 protected:
  ImportProgram() {
    fs::create_directories(folder / "work");
    std::ofstream(folder / "a.md") << "# A";
    std::ofstream(folder / "work/b.md") << "text ![](b.png)";
    std::ofstream(folder / "work/b.png") << "B";
  }
  support::ProgramResult import(std::vector<std::string> arguments) {
    return support::runProgram(arguments, {}, IMPORT_PROGRAM);
  }

  support::ThrowawayHome home;
  fs::path folder = home.path() / "vault";
};

TEST_F(ImportProgram, ShowsFirstAndDoesThen) {
  const auto shown = import({"--dry-run", folder});
  EXPECT_EQ(shown.output,
            "a.md -> # A\nwork/b.md -> # b + b.png\nWould import 2 notes with 1 attachment.\n");
  EXPECT_EQ(shown.exitCode, 0);
  EXPECT_FALSE(fs::exists(home.database()));

  EXPECT_EQ(import({folder}).output, "Imported 2 notes with 1 attachment.\n");
  EXPECT_EQ(import({folder}).output, "Imported 0 notes with 0 attachments; 2 there already.\n");
  EXPECT_EQ(support::runProgram({"cat", "--title", "b"}).output, "# b\n\ntext ![](b.png)\n\n#work");
  EXPECT_EQ(support::runProgram({"list", "--count"}).output, "2\n");
}

TEST_F(ImportProgram, EndsAsTheOtherProgramsDo) {
  EXPECT_EQ(import({"--help"}).exitCode, 0);
  EXPECT_THAT(import({"--help"}).output, HasSubstr("USAGE: tavi-import"));
  EXPECT_EQ(import({"--version"}).output, support::runProgram({"--version"}).output);
  EXPECT_EQ(import({}).exitCode, 64);
  EXPECT_EQ(import({"--encoding", "klingon", folder}).exitCode, 64);
  const auto missing = import({home.path() / "nowhere"});
  EXPECT_EQ(missing.exitCode, 1);
  EXPECT_THAT(missing.errors, HasSubstr("nowhere: No such file or directory"));
  std::ofstream(folder / "bad.md") << "\xFF\xFF";
  const auto partly = import({folder});
  EXPECT_EQ(partly.exitCode, 1);
  EXPECT_THAT(partly.output, HasSubstr("Left out:\n  bad.md: "));
  const auto lost =
      support::runProgram({"-c", IMPORT_PROGRAM " \"$0\" >/dev/full", folder}, {}, "/bin/sh");
  EXPECT_EQ(lost.exitCode, 1);
  EXPECT_THAT(lost.errors, HasSubstr("Could not write the output"));
}

TEST_F(ImportProgram, TakesNothingInWhileTheApplicationIsLocked) {
  home.lockApplication();
  EXPECT_THAT(import({folder}).errors, HasSubstr("app lock"));
  EXPECT_FALSE(fs::exists(home.database()));
}

}  // namespace
}  // namespace tavi

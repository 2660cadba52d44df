#include "cli/help.h"

#include <gmock/gmock.h>

#include "cli/version.h"
#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

TEST(HelpRequests, AreReadFromTheWordsAlone) {
  for (const Arguments& arguments : {Arguments{}, {"help"}, {"-h"}, {"--help", "--format=json"}})
    EXPECT_TRUE(isShortHelpRequest(arguments));
  EXPECT_FALSE(isShortHelpRequest({"--format"}));
  EXPECT_FALSE(isShortHelpRequest({"list", "-h"}));

  EXPECT_TRUE(isFullReferenceRequest({"help", "-x", "all"}));
  EXPECT_FALSE(isFullReferenceRequest({"help", "all", "extra"}));

  using Path = std::vector<std::string>;
  EXPECT_EQ(helpTargetPath({"help", "tags", "add"}), (Path{"tags", "add"}));
  EXPECT_EQ(helpTargetPath({"show", "--title", "-h"}), Path{"show"});
  EXPECT_EQ(helpTargetPath({"search", "x", "--", "--help"}), (Path{"search", "x"}));
  EXPECT_EQ(helpTargetPath({"help"}), std::nullopt);
  EXPECT_EQ(helpTargetPath({"show", "-help"}), std::nullopt);
}

class Help : public CommandLine {
 protected:
  void SetUp() override {
    ::setenv("COLUMNS", "80", 1);
    ::unsetenv("LINES");
  }
  std::string page(const std::vector<std::string>& arguments) {
    const Result result = run(arguments);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(opened) << "help opened a store";
    return result.output;
  }
};

TEST_F(Help, ServesTheVersion) {
  EXPECT_EQ(page({"-v"}), versionString() + "\n");
  EXPECT_EQ(page({"--version"}), "1.0.0 (1)\n");
  EXPECT_EQ(run({"--version", "extra"}).exitCode, 64);
}

TEST_F(Help, ShowsTheOverviewWithoutThePointerToIt) {
  const std::string overview = page({});
  EXPECT_TRUE(overview.starts_with(
      "OVERVIEW: Command line tool for reading and writing Tavi notes.\n\nUSAGE: tavicli"));
  EXPECT_THAT(overview, HasSubstr("  attachments             Manage attachments on a note.\n"));
  EXPECT_THAT(overview, Not(HasSubstr("See 'tavicli help")));
  EXPECT_THAT(overview, HasSubstr("\n\nHELP:\n  tavicli -h "));
  EXPECT_TRUE(overview.ends_with("Use -n and --fields to limit output.\n"));
  EXPECT_EQ(page({"help"}), overview);
}

TEST_F(Help, ShowsThePageOfTheDeepestCommand) {
  EXPECT_EQ(page({"trash", "x", "-h"}), page({"help", "trash"}));
  EXPECT_THAT(page({"help", "tags", "nosuch"}), StartsWith("OVERVIEW: Manage tags.\n"));
}

}  // namespace
}  // namespace tavi

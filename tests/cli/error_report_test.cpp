#include "cli/error_report.h"

#include "command_line.h"

namespace tavi {
namespace {

using testing::CommandLine;

TEST(WantsJSONOutput, LooksAtTheWordsAlone) {
  EXPECT_TRUE(wantsJSONOutput({"trash", "--format", "json"}));
  EXPECT_TRUE(wantsJSONOutput({"--", "--format=json"}));
  EXPECT_FALSE(wantsJSONOutput({"list", "--format"}));
  EXPECT_FALSE(wantsJSONOutput({"list", "--format", "csv", "json"}));
  EXPECT_FALSE(wantsJSONOutput({}));
}

class ErrorReport : public CommandLine {
 protected:
  static Result json(int exitCode, const std::string& code, const std::string& message) {
    return {exitCode, R"({"error":{"code":")" + code + R"(","message":")" + message + "\"}}\n", ""};
  }
};

TEST_F(ErrorReport, IsPlainOrJSONWithTheSameExitCode) {
  EXPECT_EQ(run({"show", "x"}), refused(1, "Note not found: x"));
  EXPECT_EQ(run({"show", "x", "--format", "json"}), json(1, "note_not_found", "Note not found: x"));
  EXPECT_EQ(run({"show", "--format=json"}), json(64, "usage", "Note ID or title is required"));
  EXPECT_EQ(run({"attachments", "save", "--format", "json"}),
            json(64, "usage", "--filename is required"));
}

TEST_F(ErrorReport, ComesFromTheStoreBeforeAnyCheckOfOurs) {
  home.lockApplication();
  const std::string message =
      "Tavi’s app lock is enabled; disable it in Tavi’s settings to use the CLI.";
  EXPECT_EQ(run({"edit", "x"}), refused(1, message));
  EXPECT_EQ(run({"list", "--format", "json"}), json(1, "app_lock_enabled", message));
}

TEST_F(ErrorReport, HelpsWithSearchesThatLookRight) {
  EXPECT_EQ(run({"search", "--title", "Mars"}),
            refused(64,
                    "Search has no --title flag — use @title in the query: tavicli search "
                    "\"@title <text>\""));
  EXPECT_EQ(run({"search", "- [ ]"}),
            refused(64, "Query starts with \"-\" — use --query to pass it"));
  EXPECT_EQ(run({"search", "-n", "5", "--bogus", "--format=json"}),
            json(64, "usage", R"(Query starts with \"-\" — use --query to pass it)"));
  EXPECT_EQ(run({"search-in", "--title", "Mars", "-z"}),
            refused(64, "Query starts with \"-\" — use --string to pass it"));
  EXPECT_TRUE(run({"search", "--bogus"}).errors.starts_with("Error: Unknown option '--bogus'"));
}

TEST_F(ErrorReport, StaysOnItsLineAndMovesNoCursor) {
  const std::string escape =
      "a\x1b[2J\n\xC2\x9B\xE2\x80\xA8"
      "b";
  const std::string shown = R"(a\u001b[2J\n\u009b\u2028b)";
  EXPECT_EQ(run({"show", escape}), refused(1, "Note not found: " + shown));
  EXPECT_EQ(run({"list", "--location", escape}), refused(64, "Invalid location: " + shown));
  for (const auto& [line, message] :
       {std::pair{std::vector<std::string>{"list", escape}, "Unexpected argument '" + shown + "'"},
        {{"list", "--" + escape}, "Unknown option '--" + shown + "'"},
        {{"list", "-" + escape}, "Unknown option '-" + shown + "'"},
        {{"list", "---" + escape}, "Invalid option: ---" + shown},
        {{"list", "-n", escape}, "The value '" + shown + "' is invalid for '-n <limit>'\n"},
        {{"list", "--count=" + escape}, "does not take any value, but '" + shown + "' was"},
        {{"--generate-completion-script", escape}, "scripts for '" + shown + "'.\nPlease"}})
    EXPECT_NE(run(line).errors.find(message), std::string::npos) << run(line).errors;
}

TEST_F(ErrorReport, HelpsWithAQueryThatIsALetterWithASign) {
  EXPECT_EQ(run({"search", "-x?"}),
            refused(64, "Query starts with \"-\" — use --query to pass it"));
  EXPECT_TRUE(
      run({"list", "-x?"}).errors.starts_with("Error: Invalid option: -?\nUsage: tavicli "));
}

TEST_F(ErrorReport, RefusesArgumentsThatAreNoText) {
  EXPECT_EQ(run({"create", "a\xff"}), refused(64, "Argument 2 is not valid UTF-8"));
  EXPECT_FALSE(opened);
}

}  // namespace
}  // namespace tavi

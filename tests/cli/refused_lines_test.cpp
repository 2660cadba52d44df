#include "command_line.h"

// The output for a line that the parser refuses, one of each kind. The parser's tests cover which
// lines it refuses.

namespace tavi {
namespace {

using testing::CommandLine;
using Line = std::vector<std::string>;

struct Refused {
  Line line;
  Line path;  ///< the command whose usage is shown
  std::string message;
  std::string help = {};
};

class RefusedLines : public CommandLine {
 protected:
  /// The usage line of the command's help page.
  std::string usage(Line path) {
    path.insert(path.begin(), "help");
    const std::string page = run(path).output;
    const auto begin = page.find("USAGE: ") + 7;
    return page.substr(begin, page.find('\n', begin) - begin);
  }

  void check(const std::vector<Refused>& refusals) {
    for (const auto& [line, path, message, help] : refusals) {
      std::string command = "tavicli";
      for (const std::string& name : path) command += " " + name;
      EXPECT_EQ(run(line),
                (Result{64, "",
                        "Error: " + message + "\n" + (help.empty() ? "" : "Help:  " + help + "\n") +
                            "Usage: " + usage(path) + "\n  See '" + command +
                            " --help' for more information.\n"}));
      EXPECT_FALSE(opened) << message;
    }
  }

  /// The same in JSON: --format=json has that effect even if the command has no such option.
  void checkInJSON(const std::vector<Refused>& refusals) {
    for (const Refused& refused : refusals) {
      Line line = refused.line;
      line.push_back("--format=json");
      std::string escaped;
      for (const char c : refused.message) escaped += c == '\n' ? "\\n" : std::string(1, c);
      EXPECT_EQ(run(line),
                (Result{64, R"({"error":{"code":"usage","message":")" + escaped + "\"}}\n", ""}));
    }
  }
};

TEST_F(RefusedLines, ShowTheFaultTheArgumentAndTheUsageInTextAndInJSON) {
  const std::vector<Refused> refusals{
      {{"list", "--limti", "5"}, {"list"}, "Unknown option '--limti'. Did you mean '--limit'?"},
      {{"list", "-limit", "5"},
       {"list"},
       "Unknown option '-limit'. Did you mean '--limit'?\n"
       "   or: Missing value for '-l <location>' in '-limit'"},
      {{"--format=csv", "list"}, {}, "Unknown option '--format'"},
      {{"list", "x", "-%=5"}, {}, "Invalid option: -%"},
      {{"attachments", "save", "x", "-f"},
       {"attachments", "save"},
       "Missing value for '-f <filename>'",
       "-f <filename>  Filename of the attachment to save (required)."},
      {{"list", "--limit", "abc", "--offset", "x", "--bogus"},
       {"list"},
       "The value 'abc' is invalid for '--limit <limit>'",
       "--limit <limit>  Maximum number of notes to return. Default: all."},
      {{"create", "x", "--format=JSON"},
       {"create"},
       "The value 'JSON' is invalid for '--format <format>'. Please provide one of 'tsv', 'csv' or "
       "'json'.",
       "--format <format>  Output format: tsv, csv, json."},
      {{"open", "--new-window=no"},
       {"open"},
       "The option '--new-window' does not take any value, but 'no' was specified."},
      {{"show", "x", ""}, {"show"}, "Unexpected argument ''"},
      {{"pin", "x", "add", "global"}, {"pin", "list"}, "2 unexpected arguments: 'add', 'global'"},
      {{"--generate-completion-script=", "list"},
       {},
       "Can't generate completion scripts for ''.\n"
       "Please use --generate-completion-script=<shell> with one of:\n    zsh bash fish"},
  };
  check(refusals);
  checkInJSON(refusals);
}

}  // namespace
}  // namespace tavi

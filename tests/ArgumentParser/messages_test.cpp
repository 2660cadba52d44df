#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "shelf.h"

namespace ArgumentParser {
namespace {

using shelf::kShelf;

std::exception_ptr errorOf(const CommandType& root, const std::vector<std::string>& line) {
  try {
    parseAsRoot(root, line)->run();
  } catch (...) {
    return std::current_exception();
  }
  return nullptr;
}

std::string full(const std::vector<std::string>& line) {
  return fullMessage(kShelf, errorOf(kShelf, line), 80);
}

TEST(Messages, StandAboveTheUsageOfTheCommandReached) {
  EXPECT_EQ(full({"edit", "--titel", "x"}),
            "Error: Unknown option '--titel'. Did you mean '--title'?\n"
            "Usage: shelf edit [<book-id>] [--title <title>] [--find <find> ...] "
            "[--replace <replace> ...] [--all] [--force]\n"
            "  See 'shelf edit --help' for more information.");
  EXPECT_EQ(full({"tags", "1", "-n", "abc"}),
            "Error: Unknown option '-n'\n"
            "Usage: shelf tags list [<book-id>] [--count]\n"
            "  See 'shelf tags list --help' for more information.");
  EXPECT_THAT(full({"ls", "x"}),  // an alias; the message shows the name
              testing::StartsWith("Error: Unexpected argument 'x'\nUsage: shelf list [--sort"));
}

TEST(Messages, ExplainTheArgumentConcerned) {
  const auto help = [](const std::vector<std::string>& line) {
    const std::string text = full(line);
    const auto begin = text.find("Help:");
    return begin == text.npos ? "" : text.substr(begin, text.find("\nUsage:") - begin);
  };
  EXPECT_EQ(help({"list", "-n", "x"}), "Help:  -n <limit>  Maximum number of books.");
  EXPECT_EQ(help({"list", "--limit"}), "Help:  --limit <limit>  Maximum number of books.");
  EXPECT_EQ(help({"scan", "--printer", "x"}), "Help:  <page>  First page.");
  EXPECT_EQ(help({"scan", "x"}), "Help:  --printer <printer>  Where to print.");
  EXPECT_EQ(help({"list", "--bogus"}), "");
}

TEST(Messages, ListTheValuesThatWouldDo) {
  const auto text = [](const std::vector<std::string>& line) {
    return message(kShelf, errorOf(kShelf, line));
  };
  EXPECT_EQ(text({"scan", "--color", "green"}),
            "The value 'green' is invalid for '--color <color>'. "
            "Please provide one of 'red' and 'blue'.");
  EXPECT_EQ(text({"list", "--format", "xml"}),
            "The value 'xml' is invalid for '--format <format>'. "
            "Please provide one of 'tsv', 'csv' or 'json'.");
  EXPECT_EQ(text({"scan", "--size", "b5"}),
            "The value 'b5' is invalid for '--size <size>'. "
            "Please provide one of the following:\n"
            "  - a1\n  - a2\n  - a3\n  - a4\n  - a5\n  - a6");
  EXPECT_EQ(text({"list", "-n5"}),
            "Unknown option '-n5'\n   or: Missing value for '-n <limit>' in '-n5'");
  EXPECT_EQ(text({"--generate-completion-script=tcsh"}),
            "Can't generate completion scripts for 'tcsh'.\n"
            "Please use --generate-completion-script=<shell> with one of:\n    zsh bash fish");
}

TEST(Messages, SuggestTheNearestLongNameWithinThreeEdits) {
  const auto suggestion = [](const std::string& name) {
    const std::string text = message(kShelf, errorOf(kShelf, {"list", name}));
    const auto begin = text.find("Did you mean ");
    return begin == text.npos ? "" : text.substr(begin + 13);
  };
  EXPECT_EQ(suggestion("--limti"), "'--limit'?");
  EXPECT_EQ(suggestion("-limit"), "'--limit'?");
  EXPECT_EQ(suggestion("--xxxit"), "'--limit'?");  // 3 edits
  EXPECT_EQ(suggestion("--xxxxt"), "");            // 4 from "--limit", "--sort" and "--count"
  EXPECT_EQ(suggestion("--lorit"), "'--sort'?");   // 2, like "--limit", which is declared later
  EXPECT_EQ(suggestion("-z"), "");
}

class Scale {
 public:
  int factor = 1;
  friend std::optional<Scale> parseValue(std::string_view, const Scale&) {
    throw std::invalid_argument("Scales are out of stock.");
  }
  friend std::string describeValue(const Scale&) { return {}; }
};

/// A command whose `run` throws what the test chooses.
struct Thrower : ParsableCommand {
  static CommandConfiguration configuration() { return {.commandName = "thrower"}; }
  void declare(ArgumentSet& args) override {
    args.argument(kind, "kind").required();
    args.option(scale, "--scale");
  }
  void validate() override {
    if (kind == "invalid") throw ValidationError("Not this one.");
    if (kind == "clean") throw CleanExit::message("As you like.");
  }
  void run() override {
    if (kind == "body") throw ValidationError("Not there.");
    if (kind == "code") throw ExitCode(3);
    if (kind == "silent") throw 1;
    if (kind == "help") throw CleanExit::helpRequest(*this);
    throw std::runtime_error("The shelf broke.");
  }

  std::string kind;
  Scale scale;
};

const CommandType kThrower = commandType<Thrower>();

TEST(Messages, OfAnyErrorComeWithItsExitCode) {
  const std::string usage =
      "Usage: thrower <kind> [--scale <scale>]\n"
      "  See 'thrower --help' for more information.";
  const std::string page =
      "USAGE: thrower <kind> [--scale <scale>]\n\nARGUMENTS:\n  <kind>\n\nOPTIONS:\n"
      "  --scale <scale>\n  -h, --help              Show help information.\n";
  struct Case {
    std::vector<std::string> line;
    std::string text;
    int exitCode;
  };
  for (const auto& [line, text, code] : std::initializer_list<Case>{
           {{"invalid"}, "Error: Not this one.\n" + usage, 64},
           {{"body"}, "Error: Not there.\n" + usage, 64},
           {{"clean"}, "As you like.", 0},
           {{"help"}, page, 0},
           {{"-h"}, page, 0},
           {{"code"}, "", 3},
           {{"other"}, "Error: The shelf broke.", 1},
           {{"silent"}, "Error: Unknown error", 1},
           {{"x", "--scale", "5"},
            "Error: The value '5' is invalid for '--scale <scale>': Scales are out of stock.\n" +
                usage,
            64},
           // For an empty line, the whole help page is shown.
           {{}, "Error: Missing expected argument '<kind>'\n\n" + page, 64},
       }) {
    const auto error = errorOf(kThrower, line);
    EXPECT_EQ(fullMessage(kThrower, error, 80), text);
    EXPECT_EQ(exitCode(kThrower, error), code) << text;
  }
}

TEST(Messages, GoToTheStreamThatFits) {
  const auto exit = [](const CommandType& root, const std::vector<std::string>& line) {
    exitWithError(root, errorOf(root, line));
  };
  EXPECT_EXIT(exit(kThrower, {"invalid"}), testing::ExitedWithCode(64),
              "^Error: Not this one.\nUsage: .*\n.* for more information.\n$");
  EXPECT_EXIT(exit(kThrower, {"clean"}), testing::ExitedWithCode(0), "^$");
  EXPECT_EXIT(exit(kThrower, {"code"}), testing::ExitedWithCode(3), "^$");
}

}  // namespace
}  // namespace ArgumentParser

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "ArgumentParser/command_tree.h"
#include "ArgumentParser/help_generator.h"
#include "shelf.h"
#include "support/every_command.h"

namespace ArgumentParser {
namespace {

using support::forEachCommand;

using shelf::kShelf;

/// A command whose arguments and configuration come from the test.
struct Tool : ParsableCommand {
  static inline std::function<void(Tool&, ArgumentSet&)> declaration;
  static inline CommandConfiguration told;

  static CommandConfiguration configuration() { return told; }
  void declare(ArgumentSet& args) override { declaration(*this, args); }

  std::optional<std::string> text;
  std::string textWithDefault = "a value";
  std::vector<std::string> texts;
  bool flag = false;
};

std::string toolPage(std::function<void(Tool&, ArgumentSet&)> declaration,
                     CommandConfiguration configuration = {}, int columns = 80) {
  Tool::declaration = std::move(declaration);
  Tool::told = std::move(configuration);
  return helpMessage({commandType<Tool>()}, columns);
}

/// The usage line of a command with these arguments.
std::string usageWith(int flags, bool withPositional, bool withRequired) {
  const std::string page = toolPage([&](Tool& tool, ArgumentSet& args) {
    if (withPositional) args.argument(tool.text, "place");
    if (withRequired) args.option(tool.text, {"-r", "--required"}).required();
    for (int i = 0; i < flags; ++i) args.flag(tool.flag, ("--f" + std::to_string(i)).c_str());
    args.flag(tool.flag, "--unseen").hidden();
  });
  return page.substr(7, page.find('\n') - 7);
}

TEST(Help, LaysOutAWholePage) {
  EXPECT_EQ(helpMessage({kShelf, commandType<shelf::Scan>()}, 80),
            R"(OVERVIEW: Scan pages.

Pages come out in the order given.

One sheet at a time.

USAGE: shelf scan <page> [<more-pages> ...] [--color <color>] [--size <size>] --printer <printer> [--copies <copies>]

ARGUMENTS:
  <page>                  First page.
  <more-pages>

OPTIONS:
  --color <color>         Ink. (values: red, blue)
  --size <size>           Paper. (values: a1, a2, a3, a4, a5, a6)
  --printer <printer>     Where to print.
  --copies <copies>       How many. (default: 1)
        Each copy is a job of its own.
  --version               Show the version.
  -h, --help              Show help information.
)");
  EXPECT_EQ(helpMessage({kShelf, commandType<shelf::Tags>()}, 80), R"(OVERVIEW: Manage tags.

USAGE: shelf tags <subcommand>

OPTIONS:
  -h, --help              Show help information.

SUBCOMMANDS:
  list (default)          List tags.
  add                     Add tags to a book.

  See 'shelf help tags <subcommand>' for detailed help.)");
}

TEST(Help, TakesTheWidthFromEnvironmentOrTerminal) {
  const auto width = [](const char* columns, const char* lines) {
    columns ? setenv("COLUMNS", columns, 1) : unsetenv("COLUMNS");
    lines ? setenv("LINES", lines, 1) : unsetenv("LINES");
    const std::string page = helpMessage({kShelf, commandType<shelf::List>()});
    for (int candidate : {40, 60, 80})
      if (page == helpMessage({kShelf, commandType<shelf::List>()}, candidate)) return candidate;
    return 0;
  };
  EXPECT_EQ(width("40", "20"), 40);
  EXPECT_EQ(width("60", nullptr), 60);
  unsetenv("COLUMNS");
  testing::internal::CaptureStdout();  // redirects to a file, which has no width
  for (const char* columns : {"", "wide", "0", "-40", "40x"}) EXPECT_EQ(width(columns, "20"), 80);
  EXPECT_EQ(width(nullptr, nullptr), 80);
  testing::internal::GetCapturedStdout();
}

TEST(Help, StartsTheAbstractBesideALabelThatLeavesRoom) {
  const std::string page = toolPage([](Tool& tool, ArgumentSet& args) {
    args.option(tool.text, "--a").valueName("seventeen-letters").help("Beside.");  // 23 wide
    args.option(tool.text, "--b").valueName("eighteen-letters-x").help("Below.");  // 24 wide
    args.option(tool.text, "--c").valueName("ä—————————letters").help("Beside.");
    args.flag(tool.flag, "--d").help("\nBelow.");
    args.flag(tool.flag, "--e").discussion("Only a discussion.\n\nOf two lines.");
  });
  EXPECT_THAT(page, testing::HasSubstr("  --a <seventeen-letters> Beside.\n"));
  EXPECT_THAT(page, testing::HasSubstr("  --b <eighteen-letters-x>\n"
                                       "                          Below.\n"));
  EXPECT_THAT(page, testing::HasSubstr("  --c <ä—————————letters> Beside.\n"));
  EXPECT_THAT(page, testing::HasSubstr("  --d\n\n                          Below.\n"));
  EXPECT_THAT(page,
              testing::HasSubstr("  --e\n        Only a discussion.\n\n        Of two lines.\n"));
}

TEST(Help, ShowsDefaultsThatSaySomething) {
  const std::string page = toolPage([](Tool& tool, ArgumentSet& args) {
    args.option(tool.textWithDefault, "--a").help("A.");
    tool.textWithDefault = "";
    args.option(tool.textWithDefault, "--b").help("B.");
    tool.textWithDefault = "x";
    args.option(tool.textWithDefault, "--c");
    args.option(tool.textWithDefault, "--d").help("D.").required();
  });
  EXPECT_THAT(page, testing::HasSubstr("  --a <a>                 A. (default: a value)\n"
                                       "  --b <b>                 B.\n"
                                       "  --c <c>                 (default: x)\n"
                                       "  --d <d>                 D.\n"));
}

TEST(Help, ShortensAUsageLineOfMoreThanTwelveArguments) {
  EXPECT_EQ(usageWith(0, false, false), "tool");
  EXPECT_EQ(usageWith(2, true, true), "tool [<place>] --required <required> [--f0] [--f1]");
  EXPECT_EQ(usageWith(12, false, false),
            "tool [--f0] [--f1] [--f2] [--f3] [--f4] [--f5] [--f6] [--f7] [--f8] [--f9] [--f10] "
            "[--f11]");
  EXPECT_EQ(usageWith(13, false, false), "tool <options>");
  EXPECT_EQ(usageWith(12, true, false), "tool [<options>] [<place>]");
  EXPECT_EQ(usageWith(12, true, true), "tool [<options>] [<place>] --required <required>");
}

TEST(Help, FollowsTheConfiguration) {
  const auto nothing = [](Tool&, ArgumentSet&) {};
  EXPECT_EQ(toolPage(nothing, {.helpNames = Names{}}), "USAGE: tool\n\n");
  EXPECT_EQ(toolPage(nothing, {.usage = "", .helpNames = Names{}}), "");
  EXPECT_EQ(toolPage(nothing, {.usage = "tool one\ntool two", .discussion = "Talk."}),
            "OVERVIEW: Talk.\n\nUSAGE: tool one\n       tool two\n\n"
            "OPTIONS:\n  -h, --help              Show help information.\n");
  EXPECT_EQ(toolPage(nothing, {.commandName = "t", .helpNames = Names{"--aid", "-?"}}),
            "USAGE: t\n\nOPTIONS:\n  -?, --aid               Show help information.\n");
}

TEST(Help, PutsATitledGroupIntoASectionOfItsOwn) {
  struct Group : ParsableArguments {
    std::optional<std::string> place;
    bool deep = false;
    void declare(ArgumentSet& args) override {
      args.argument(place, "place");
      args.flag(deep, "--deep");
    }
  };
  Group group;
  const std::string page = toolPage([&](Tool& tool, ArgumentSet& args) {
    args.flag(tool.flag, "--first");
    args.group(group, "Depth");
    args.argument(tool.texts, "rest");
  });
  EXPECT_EQ(page,
            "USAGE: tool [--first] [<place>] [--deep] [<rest> ...]\n\nARGUMENTS:\n  <rest>\n\n"
            "DEPTH:\n  <place>\n  --deep\n\nOPTIONS:\n  --first\n"
            "  -h, --help              Show help information.\n");
}

TEST(Help, NamesExactlyWhatParses) {
  forEachCommand({kShelf}, [](const CommandStack& stack) {
    const DeclaredCommand declared(stack.back());
    std::vector<std::string> expected;
    for (const ArgumentDefinition& definition : declared.arguments.definitions())
      for (const Name& name : definition.names) expected.push_back(name.written());
    for (const ArgumentDefinition& flag : builtInFlags(stack))
      for (const Name& name : flag.names) expected.push_back(name.written());
    const auto names = support::namesOnPage(helpMessage(stack, 80));
    EXPECT_THAT(names, testing::UnorderedElementsAreArray(expected));

    for (const std::string& name : names) {
      auto line = support::pathBelowRoot(stack);
      line.push_back(name);
      try {
        parseAsRoot(kShelf, line);
      } catch (...) {
        const std::string text = message(kShelf, std::current_exception());
        EXPECT_THAT(text, testing::Not(testing::HasSubstr("Unknown option"))) << name;
      }
    }
  });
}

}  // namespace
}  // namespace ArgumentParser

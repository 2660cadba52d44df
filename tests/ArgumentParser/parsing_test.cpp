#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "ArgumentParser/parser_error.h"
#include "shelf.h"

namespace ArgumentParser {
namespace {

using Line = std::vector<std::string>;

using shelf::kShelf;

template <class T>
std::string field(const char* name, const std::optional<T>& value) {
  return value ? fmt::format(" {}={}", name, *value) : "";
}

std::string field(const char* name, const std::vector<std::string>& values) {
  return values.empty() ? "" : fmt::format(" {}={}", name, fmt::join(values, "|"));
}

std::string field(const char* name, bool value) {
  return value ? fmt::format(" {}", name) : "";
}

std::string describe(const ParsableCommand& command) {
  if (const auto* list = dynamic_cast<const shelf::List*>(&command))
    return fmt::format("list sort={}", list->sort) + field("limit", list->limit) +
           fmt::format(" offset={} format={}", list->offset,
                       describeValue(list->formatOptions.format)) +
           field("fields", list->formatOptions.fields) + field("count", list->count);
  if (const auto* edit = dynamic_cast<const shelf::Edit*>(&command))
    return "edit" + field("id", edit->bookID) + field("title", edit->title) +
           field("find", edit->finds) + field("replace", edit->replacements) +
           field("all", edit->all) + field("force", edit->force);
  if (const auto* tags = dynamic_cast<const shelf::ListTags*>(&command))
    return "tags list" + field("id", tags->bookID) + field("count", tags->count);
  if (const auto* add = dynamic_cast<const shelf::AddTags*>(&command))
    return "tags add" + field("id", add->bookID) + field("tags", add->tags) +
           field("note", add->note);
  if (const auto* scan = dynamic_cast<const shelf::Scan*>(&command))
    return fmt::format("scan {} copies={}", scan->page, scan->copies) + field("more", scan->pages);
  return dynamic_cast<const shelf::Shelf*>(&command) ? "shelf" : "?";
}

/// The result of parsing a line: the command with its values, or the message.
std::string outcome(const Line& line) {
  try {
    return describe(*parseAsRoot(kShelf, line));
  } catch (...) {
    const auto error = std::current_exception();
    const std::string text = message(kShelf, error);
    return (exitCode(kShelf, error) == 0 ? "prints: " : "fails: ") +
           text.substr(0, text.find('\n'));
  }
}

struct ParsingCase {
  Line line;
  std::string outcome;
};

void check(std::initializer_list<ParsingCase> cases) {
  for (const auto& [line, expected] : cases)
    EXPECT_EQ(outcome(line), expected) << "shelf " << fmt::format("{}", fmt::join(line, " "));
}

TEST(Parsing, GivesAnOptionItsValueInEveryForm) {
  check({
      {{"list"}, "list sort=title offset=0 format=tsv"},
      {{"list", "--limit", "5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "--limit=5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "-n", "5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "-s="}, "list sort= offset=0 format=tsv"},
      {{"list", "-n=5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "--limit=-5"}, "list sort=title limit=-5 offset=0 format=tsv"},
      {{"list", "--limit", "+5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "--fields=a=b"}, "list sort=title offset=0 format=tsv fields=a=b"},
      {{"list", "--fields="}, "list sort=title offset=0 format=tsv fields="},
      {{"list", "--fields", ""}, "list sort=title offset=0 format=tsv fields="},
      {{"list", "--fields", "-"}, "list sort=title offset=0 format=tsv fields=-"},
      {{"list", "--format", "json"}, "list sort=title offset=0 format=json"},
      {{"list", "-s", "a", "--sort", "b", "--count"}, "list sort=b offset=0 format=tsv count"},
      {{"edit", "--find", "a", "-f", "b", "--replace=c"}, "edit find=a|b replace=c"},
  });
}

TEST(Parsing, LeavesWhatLooksLikeAnOptionToOptionsThatTakeAnything) {
  check({
      {{"list", "--limit", "-5"}, "fails: Missing value for '--limit <limit>'"},
      {{"list", "--fields", "--count"}, "fails: Missing value for '--fields <fields>'"},
      {{"list", "--fields"}, "fails: Missing value for '--fields <fields>'"},
      {{"list", "--fields", "--", "x"}, "fails: Missing value for '--fields <fields>'"},
      {{"list", "--fields", "---"}, "fails: Invalid option: ---"},
      {{"edit", "--find", "--all"}, "edit find=--all"},
      {{"edit", "--find", "--", "x"}, "edit id=x find=--"},
      {{"edit", "--find", "---", "--replace", "- [ ]"}, "edit find=--- replace=- [ ]"},
      {{"edit", "-f", "-?", "--replace", "--=x"}, "edit find=-? replace=--=x"},
      {{"edit", "--find", "--find", "--find", "x"}, "edit find=--find|x"},
      {{"edit", "--find", "-h"}, "edit find=-h"},
      {{"edit", "--find"}, "fails: Missing value for '--find <find>'"},
      // The root has a flag of this name and parses its arguments before the command.
      {{"edit", "--find", "-v", "--replace", "--version"}, "edit find=-v replace=--version"},
      {{"edit", "--find", "--version=2", "-f", "-v=1"}, "edit find=--version=2|-v=1"},
      {{"edit", "-vf", "--all", "--find", "-x?"}, "edit find=--all|-x?"},
      {{"-v", "edit", "-f", "---"}, "edit find=---"},
      {{"list", "-n", "-v=1"},
       "fails: The option '-v' does not take any value, but '1' was specified."},
  });
}

TEST(Parsing, FillsPositionalsInOrderFromWhatIsLeft) {
  check({
      {{"edit", "1"}, "edit id=1"},
      {{"tags", "add", "1", "a", "b"}, "tags add id=1 tags=a|b"},
      {{"tags", "add", "--note", "n", "1", "a", "b"}, "tags add id=1 tags=a|b note=n"},
      {{"tags", "add", "1", "--note", "n", "a", "b"}, "tags add id=1 tags=a|b note=n"},
      {{"tags", "add", "1", "a", "b", "--note=n"}, "tags add id=1 tags=a|b note=n"},
      {{"tags", "add", "1", "--", "-x", "--note", "--"}, "tags add id=1 tags=-x|--note|--"},
      {{"tags", "add", "", "-"}, "tags add id= tags=-"},
      {{"edit", "1", "2"}, "fails: Unexpected argument '2'"},
      {{"edit", "1", "2", "3"}, "fails: 2 unexpected arguments: '2', '3'"},
      {{"list", "--", "--count"}, "fails: Unexpected argument '--count'"},
      {{"list", "--"}, "list sort=title offset=0 format=tsv"},
  });
}

TEST(Parsing, FindsTheCommandByItsPath) {
  check({
      {{"ls"}, "list sort=title offset=0 format=tsv"},
      {{"tags"}, "tags list"},
      {{"tags", "1", "--count"}, "tags list id=1 count"},
      {{"tags", "list", "1"}, "tags list id=1"},
      {{"tags", "add"}, "tags add"},
      {{"-v", "tags", "add"}, "tags add"},
      {{"tags", "add", "-v"}, "tags add"},
      {{}, "shelf"},
      {{"-v"}, "shelf"},
      {{"tag"}, "fails: Unexpected argument 'tag'"},
      {{"Tags"}, "fails: Unexpected argument 'Tags'"},
      {{"--", "tags"}, "fails: Unexpected argument 'tags'"},
      // After an unknown option, the command's name is not recognised.
      {{"--nonsense", "tags"}, "fails: Unknown option '--nonsense'"},
      {{"tags", "-c", "add"}, "tags list id=add count"},
  });
}

TEST(Parsing, ReadsLettersBehindOneDashAsOneNameOrMany) {
  check({
      {{"tags", "-vc"}, "tags list count"},
      {{"list", "-vn", "5"}, "list sort=title limit=5 offset=0 format=tsv"},
      {{"list", "-n5"}, "fails: Unknown option '-n5'"},
      {{"list", "-nv", "5"}, "fails: Unknown option '-nv'"},
      {{"list", "-xyz"}, "fails: Unknown option '-xyz'"},
      // A group with an unknown letter is refused as a whole, even if it contains an "h" for help.
      {{"list", "-vx"}, "fails: Unknown option '-vx'"},
      {{"list", "-vegan"}, "fails: Unknown option '-vegan'"},
      {{"list", "-vexn", "abc"}, "fails: Unknown option '-vexn'"},
      {{"tags", "add", "1", "-hi"}, "fails: Unknown option '-hi'"},
      {{"edit", "- the list"}, "fails: Unknown option '- the list'"},
      {{"list", "-math", "--bogus"}, "fails: Unknown option '-math'"},
      {{"tags", "-ch"}, "prints: OVERVIEW: List tags."},
      {{"list", "-hn", "5"}, "prints: OVERVIEW: List books."},
      {{"list", "-hh"}, "prints: OVERVIEW: List books."},
      {{"list", "-v?"}, "fails: Invalid option: -?"},
      {{"list", "-x?"}, "fails: Invalid option: -?"},
      {{"list", "-n?", "5"}, "fails: Invalid option: -?"},
      {{"list", "-vn?", "5"}, "fails: Unknown option '-vn?'"},
      {{"tags", "-vc?"}, "fails: Invalid option: -?"},
      {{"list", "-#tag"}, "fails: Unknown option '-#tag'"},
      {{"list", "- [ ]"}, "fails: Unknown option '- [ ]'"},
      {{"list", "-ab=c"}, "fails: Unknown option '-ab'"},
      {{"list", "-z"}, "fails: Unknown option '-z'"},
      {{"list", "-5"}, "fails: Unknown option '-5'"},
      {{"list", "-é"}, "fails: Unknown option '-é'"},
  });
}

TEST(Parsing, RefusesMalformedTokensBeforeAnythingElse) {
  check({
      {{"---x"}, "fails: Invalid option: ---x"},
      {{"---"}, "fails: Invalid option: ---"},
      {{"----"}, "fails: Invalid option: ----"},
      {{"--=x"}, "fails: Invalid option: --=x"},
      {{"-=x"}, "fails: Invalid option: -=x"},
      {{"-?"}, "fails: Invalid option: -?"},
      {{"-?=x"}, "fails: Invalid option: -?"},
      {{"list", "--limit", "abc", "---x"}, "fails: Invalid option: ---x"},
      {{"list", "--count", "---x", "--limit", "abc"}, "fails: Invalid option: ---x"},
      {{"list", "--bogus", "---x"}, "fails: Invalid option: ---x"},
      {{"list", "--sort", "---x"}, "fails: Invalid option: ---x"},
      {{"list", "--find", "---x"}, "fails: Invalid option: ---x"},
      {{"edit", "--find=a", "---x"}, "fails: Invalid option: ---x"},
      {{"tags", "add", "--", "---x"}, "tags add id=---x"},
  });
}

TEST(Parsing, TellsTheFirstFault) {
  check({
      {{"list", "--limit", "abc", "--sort"},
       "fails: The value 'abc' is invalid for '--limit <limit>'"},
      {{"list", "--limit=", "--bogus"}, "fails: The value '' is invalid for '--limit <limit>'"},
      {{"list", "--limit", "9223372036854775808"},
       "fails: The value '9223372036854775808' is invalid for '--limit <limit>'"},
      {{"list", "-n", "5x"}, "fails: The value '5x' is invalid for '-n <limit>'"},
      {{"list", "--limit", "+-5"}, "fails: The value '+-5' is invalid for '--limit <limit>'"},
      {{"list", "--count=1"},
       "fails: The option '--count' does not take any value, but '1' was specified."},
      {{"list", "x", "--bogus", "y", "-z"}, "fails: Unknown option '--bogus'"},
      // Order of errors: a missing value, then the command's validation, then unused elements.
      {{"scan", "p", "--printer", "x", "--copies", "0", "--bogus"}, "fails: At least one copy."},
      {{"scan", "p", "--copies", "0"}, "fails: Missing expected argument '--printer <printer>'"},
      {{"scan", "--copies", "x"}, "fails: The value 'x' is invalid for '--copies <copies>'"},
      {{"scan", "--printer", "x"}, "fails: Missing expected argument '<page>'"},
      {{"scan", "p", "--printer", "x", "q", "r"}, "scan p copies=1 more=q|r"},
  });
}

TEST(Parsing, ShowsTheHelpOfTheDeepestCommandReached) {
  check({
      {{"-h"}, "prints: OVERVIEW: A shelf of books."},
      {{"tags", "--help"}, "prints: OVERVIEW: Manage tags."},
      {{"tags", "--help", "--"}, "prints: OVERVIEW: Manage tags."},
      {{"tags", "--help", "--count"}, "prints: OVERVIEW: List tags."},
      {{"tags", "add", "x", "-h"}, "prints: OVERVIEW: Add tags to a book."},
      {{"list", "--bogus", "-h"}, "prints: OVERVIEW: List books."},
      {{"scan", "-h"}, "prints: OVERVIEW: Scan pages."},
      {{"scan", "p", "--printer", "x", "--copies", "0", "-h"}, "prints: OVERVIEW: Scan pages."},
      {{"tags", "add", "--", "-h"}, "tags add id=-h"},
      {{"list", "--help=x"},
       "fails: The option '--help' does not take any value, but 'x' was specified."},
      {{"help"}, "prints: OVERVIEW: A shelf of books."},
      {{"help", "tags"}, "prints: OVERVIEW: Manage tags."},
      {{"help", "tags", "add"}, "prints: OVERVIEW: Add tags to a book."},
      {{"help", "ls"}, "prints: OVERVIEW: List books."},
      {{"help", "help"}, "prints: OVERVIEW: Show subcommand help information."},
      {{"help", "tags", "nosuch"}, "fails: Unexpected argument 'nosuch'"},
      {{"help", "all", "extra"}, "fails: 2 unexpected arguments: 'all', 'extra'"},
      {{"tags", "help"}, "tags list id=help"},
  });
}

TEST(Parsing, ShowsTheVersionOfTheDeepestCommandThatHasOne) {
  check({
      {{"scan", "p", "--printer", "x", "--bogus", "-h", "--version"},
       "prints: OVERVIEW: Scan pages."},
      {{"help", "--version"}, "prints: OVERVIEW: A shelf of books."},  // the root's own flag
  });
  class Tool : public ParsableCommand {
   public:
    static CommandConfiguration configuration() {
      return {.version = "1.0",
              .subcommands = {commandType<shelf::List>(), commandType<shelf::Scan>()}};
    }
  };
  const auto printed = [](const Line& line) -> std::string {
    try {
      parseAsRoot(commandType<Tool>(), line);
    } catch (...) {
      return message(commandType<Tool>(), std::current_exception());
    }
    return "nothing";
  };
  EXPECT_EQ(printed({"--version"}), "1.0");
  EXPECT_EQ(printed({"list", "--bogus", "--version"}), "1.0");
  EXPECT_EQ(printed({"scan", "p", "--printer", "x", "--version"}), "2.1");
}

TEST(Parsing, AsksForACompletionScriptBeforeAllElse) {
  setenv("SHELL", "/usr/local/bin/fish", 1);
  check({
      {{"--generate-completion-script", "bash"}, "prints: #!/bin/bash"},
      {{"--generate-completion-script=bash"}, "prints: #!/bin/bash"},
      {{"list", "--limit", "x", "--generate-completion-script", "zsh"}, "prints: #compdef shelf"},
      {{"--generate-completion-script", "tcsh"},
       "fails: Can't generate completion scripts for 'tcsh'."},
      {{"list", "--count", "--generate-completion-script", "zsh", "-h"}, "prints: #compdef shelf"},
      {{"edit", "--find", "--generate-completion-script"},
       "edit find=--generate-completion-script"},
      {{"tags", "add", "--", "--generate-completion-script"},
       "tags add id=--generate-completion-script"},
  });
  EXPECT_NE(outcome({"--generate-completion-script"}).find("prints: "), std::string::npos);
  setenv("SHELL", "sh", 1);
  EXPECT_EQ(outcome({"--generate-completion-script"}),
            "fails: Can't generate completion scripts for 'sh'.");
  unsetenv("SHELL");
  EXPECT_EQ(outcome({"--generate-completion-script"}),
            "fails: Can't autodetect a supported shell.");
}

TEST(Parsing, TakesManyValuesInLinearTime) {
  Line line{"edit"};
  for (int i = 0; i < 20000; ++i) {
    line.push_back("--find");
    line.push_back("x");
  }
  const auto command = parseAsRoot(kShelf, line);
  EXPECT_EQ(dynamic_cast<const shelf::Edit&>(*command).finds.size(), 20000u);
}

}  // namespace
}  // namespace ArgumentParser

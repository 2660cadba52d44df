#include <map>

#include "command_line.h"

// Lines that the parser refuses, with all that is printed.

namespace tavi {
namespace {

using testing::CommandLine;
using Line = std::vector<std::string>;

const std::map<std::string, std::string> kUsages{
    {"tavicli", "[--version] <subcommand>"},
    {"tavicli cat",
     "[<note-id>] [--title <title>] [--offset <offset>] [--limit <limit>] "
     "[--format <format>]"},
    {"tavicli show", "[<note-id>] [--title <title>] [--format <format>] [--fields <fields>]"},
    {"tavicli list",
     "[--sort <sort>] [--limit <limit>] [--offset <offset>] "
     "[--location <location>] [--tag <tag>] [--count] [--format <format>] "
     "[--fields <fields>]"},
    {"tavicli search",
     "[<query-arg>] [--query <query>] [--sort <sort>] [--limit <limit>] "
     "[--offset <offset>] [--location <location>] [--count] "
     "[--format <format>] [--fields <fields>]"},
    {"tavicli search-in",
     "[<note-id>] [--title <title>] [--string <string>] "
     "[--context <context>] [--limit <limit>] [--count] "
     "[--format <format>] [--fields <fields>]"},
    {"tavicli edit",
     "[<note-id>] [--title <title>] [--find <find> ...] "
     "[--replace <replace> ...] [--insert-after <insert-after> ...] "
     "[--insert-before <insert-before> ...] [--all] [--ignore-case] [--word] "
     "[--no-update-modified] [--force]"},
    {"tavicli overwrite",
     "[<note-id>] [--title <title>] [--content <content>] [--base <base>] "
     "[--no-update-modified] [--force]"},
    {"tavicli create",
     "[<title>] [--content <content>] [--tags <tags>] [--if-not-exists] "
     "[--format <format>] [--fields <fields>]"},
    {"tavicli append",
     "[<note-id>] [--title <title>] [--content <content>] "
     "[--position <position>] [--no-update-modified]"},
    {"tavicli tags list",
     "[<note-id>] [--title <title>] [--count] [--format <format>] "
     "[--fields <fields>]"},
    {"tavicli tags add", "[<note-id>] [<tags> ...] [--title <title>]"},
    {"tavicli tags rename", "[<old>] [--from <from>] [<new>] [--to <to>] [--force]"},
    {"tavicli tags delete", "[<tag>] [--name <name>]"},
    {"tavicli pin list",
     "[<note-id>] [--title <title>] [--format <format>] "
     "[--fields <fields>]"},
    {"tavicli pin remove", "[<note-id>] [<targets> ...] [--title <title>]"},
    {"tavicli trash", "[<note-id>] [--title <title>]"},
    {"tavicli open",
     "[<note-id>] [--title <title>] [--header <header>] [--edit] "
     "[--new-window] [--float]"},
    {"tavicli attachments list",
     "[<note-id>] [--title <title>] [--format <format>] "
     "[--fields <fields>]"},
    {"tavicli attachments add",
     "[<note-id>] [--title <title>] [--filename <filename>] "
     "[--no-update-modified]"},
    {"tavicli attachments save",
     "[<note-id>] [--title <title>] [--filename <filename>] "
     "[--format <format>]"},
    {"tavicli mcp-server", ""},
};

struct Refused {
  Line line;
  std::string command;  ///< whose usage is shown
  std::string message;
  std::string help = {};
};

std::string escaped(const std::string& text) {
  std::string result;
  for (const char c : text) result += c == '\n' ? "\\n" : std::string(1, c);
  return result;
}

class RefusedLines : public CommandLine {
 protected:
  void check(const std::vector<Refused>& refusals) {
    for (const auto& [line, command, message, help] : refusals) {
      const std::string& arguments = kUsages.at(command);
      EXPECT_EQ(run(line),
                (Result{64, "",
                        "Error: " + message + "\n" + (help.empty() ? "" : "Help:  " + help + "\n") +
                            "Usage: " + command + (arguments.empty() ? "" : " ") + arguments +
                            "\n  See '" + command + " --help' for more information.\n"}));
      EXPECT_FALSE(opened) << message;
    }
  }

  /// The same in JSON, which the word --format=json asks for whether or not the command has it.
  void checkInJSON(const std::vector<Refused>& refusals) {
    for (const Refused& refused : refusals) {
      Line line = refused.line;
      line.push_back("--format=json");
      EXPECT_EQ(run(line), (Result{64,
                                   R"({"error":{"code":"usage","message":")" +
                                       escaped(refused.message) + "\"}}\n",
                                   ""}));
    }
  }
};

TEST_F(RefusedLines, HoldAnOptionThatNobodyKnows) {
  const std::vector<Refused> refusals{
      {{"list", "--limti", "5"},
       "tavicli list",
       "Unknown option '--limti'. Did you mean '--limit'?"},
      {{"list", "--limti=5"}, "tavicli list", "Unknown option '--limti'. Did you mean '--limit'?"},
      {{"list", "--fromat=csv"},
       "tavicli list",
       "Unknown option '--fromat'. Did you mean '--format'?"},
      {{"list", "--Tag"}, "tavicli list", "Unknown option '--Tag'. Did you mean '--tag'?"},
      {{"list", "--a"}, "tavicli list", "Unknown option '--a'. Did you mean '--tag'?"},
      {{"list", "--filed"}, "tavicli list", "Unknown option '--filed'. Did you mean '--fields'?"},
      {{"list", "--loc"}, "tavicli list", "Unknown option '--loc'. Did you mean '--sort'?"},
      {{"list", "--title", "x"}, "tavicli list", "Unknown option '--title'"},
      {{"list", "--xyzzy"}, "tavicli list", "Unknown option '--xyzzy'"},
      {{"list", "-limit", "5"},
       "tavicli list",
       "Unknown option '-limit'. Did you mean '--limit'?\n"
       "   or: Missing value for '-l <location>' in '-limit'"},
      {{"list", "-z"}, "tavicli list", "Unknown option '-z'"},
      {{"list", "-z=5"}, "tavicli list", "Unknown option '-z'"},
      {{"list", "-5"}, "tavicli list", "Unknown option '-5'"},
      {{"list", "--count", "--bogus", "-z", "x"}, "tavicli list", "Unknown option '--bogus'"},
      {{"edit", "x", "--titel", "y"},
       "tavicli edit",
       "Unknown option '--titel'. Did you mean '--title'?"},
      {{"edit", "--repalce", "x"},
       "tavicli edit",
       "Unknown option '--repalce'. Did you mean '--replace'?"},
      {{"edit", "--insert", "x"}, "tavicli edit", "Unknown option '--insert'"},
      {{"edit", "--no-update-modifed"},
       "tavicli edit",
       "Unknown option '--no-update-modifed'. Did you mean '--no-update-modified'?"},
      {{"show", "--fielsd", "id"},
       "tavicli show",
       "Unknown option '--fielsd'. Did you mean '--fields'?"},
      {{"cat", "--content"}, "tavicli cat", "Unknown option '--content'"},
      {{"open", "x", "--floating"},
       "tavicli open",
       "Unknown option '--floating'. Did you mean '--float'?"},
      {{"open", "x", "--window"}, "tavicli open", "Unknown option '--window'"},
      {{"append", "--postion", "end"},
       "tavicli append",
       "Unknown option '--postion'. Did you mean '--position'?"},
      {{"overwrite", "--hash", "x"},
       "tavicli overwrite",
       "Unknown option '--hash'. Did you mean '--base'?"},
      {{"create", "x", "--tag", "y"},
       "tavicli create",
       "Unknown option '--tag'. Did you mean '--tags'?"},
      {{"tags", "rename", "--form", "x"},
       "tavicli tags rename",
       "Unknown option '--form'. Did you mean '--from'?"},
      {{"tags", "delete", "--title", "x"}, "tavicli tags delete", "Unknown option '--title'"},
      {{"tags", "--counts"},
       "tavicli tags list",
       "Unknown option '--counts'. Did you mean '--count'?"},
      {{"attachments", "add", "--file", "x"},
       "tavicli attachments add",
       "Unknown option '--file'. Did you mean '--title'?"},
      {{"search-in", "x", "--contex", "5"},
       "tavicli search-in",
       "Unknown option '--contex'. Did you mean '--context'?"},
      {{"search", "--querry=x"},
       "tavicli search",
       "Unknown option '--querry'. Did you mean '--query'?"},
      {{"trash", "--force"}, "tavicli trash", "Unknown option '--force'"},
      {{"mcp-server", "--port", "1"}, "tavicli mcp-server", "Unknown option '--port'"},
      // The one in front hides the name of the command.
      {{"--verison"}, "tavicli", "Unknown option '--verison'. Did you mean '--version'?"},
      {{"--nonsense", "list"}, "tavicli", "Unknown option '--nonsense'"},
      {{"--format=csv", "list"}, "tavicli", "Unknown option '--format'"},
  };
  check(refusals);
  checkInJSON(refusals);
  check({{{"tags", "add", "x", "--format=csv"}, "tavicli tags add", "Unknown option '--format'"}});
}

TEST_F(RefusedLines, HoldATokenThatIsNothing) {
  const std::vector<Refused> refusals{
      {{"---x"}, "tavicli", "Invalid option: ---x"},
      {{"list", "---"}, "tavicli", "Invalid option: ---"},
      {{"list", "x", "--=5"}, "tavicli", "Invalid option: --=5"},
      {{"list", "--sort", "x", "-?"}, "tavicli", "Invalid option: -?"},
      {{"list", "x", "-%=5"}, "tavicli", "Invalid option: -%"},
      {{"list", "--count", "---x"}, "tavicli", "Invalid option: ---x"},
      {{"list", "--limit", "---x"}, "tavicli", "Invalid option: ---x"},
  };
  check(refusals);
  checkInJSON(refusals);
}

TEST_F(RefusedLines, LeaveAnOptionWithoutItsValue) {
  const std::string limit = "Maximum number of notes to return. Default: all.";
  const std::string titles = "Case-insensitive note title. Mutually exclusive with id.";
  const std::vector<Refused> refusals{
      {{"list", "--limit"},
       "tavicli list",
       "Missing value for '--limit <limit>'",
       "--limit <limit>  " + limit},
      {{"list", "-n"}, "tavicli list", "Missing value for '-n <limit>'", "-n <limit>  " + limit},
      {{"list", "--limit", "-5"},
       "tavicli list",
       "Missing value for '--limit <limit>'",
       "--limit <limit>  " + limit},
      {{"list", "--limit", "--count"},
       "tavicli list",
       "Missing value for '--limit <limit>'",
       "--limit <limit>  " + limit},
      {{"list", "--sort", "--bogus"},
       "tavicli list",
       "Missing value for '--sort <sort>'",
       "--sort <sort>  Sort criteria as comma-separated fields with optional :asc/:desc "
       "direction. Valid fields: pinned, modified, created, title. Defaults to pinned,modified."},
      {{"show", "-t", "-dash"},
       "tavicli show",
       "Missing value for '-t <title>'",
       "-t <title>  " + titles},
      {{"show", "--fields"},
       "tavicli show",
       "Missing value for '--fields <fields>'",
       "--fields <fields>  Comma-separated field names, or \"all\"."},
      {{"open", "x", "--header"},
       "tavicli open",
       "Missing value for '--header <header>'",
       "--header <header>  Scroll to the named header inside the note."},
      {{"tags", "rename", "a", "--to"},
       "tavicli tags rename",
       "Missing value for '--to <to>'",
       "--to <to>  New tag name. Surrounding # and whitespace are stripped. (Alternative to "
       "positional.)"},
      {{"attachments", "save", "x", "-f"},
       "tavicli attachments save",
       "Missing value for '-f <filename>'",
       "-f <filename>  Filename of the attachment to save (required)."},
      {{"pin", "remove", "--title"},
       "tavicli pin remove",
       "Missing value for '--title <title>'",
       "--title <title>  " + titles},
      {{"list", "-n5"},
       "tavicli list",
       "Unknown option '-n5'\n   or: Missing value for '-n <limit>' in '-n5'"},
      {{"list", "-tn", "5"}, "tavicli list", "Unknown option '-tn'. Did you mean '--tag'?"},
      {{"list", "-vn"},
       "tavicli list",
       "Unknown option '-vn'\n   or: Missing value for '-n <limit>' in '-vn'"},
  };
  check({refusals.begin(), refusals.end()});
  checkInJSON(refusals);
  // These take any word.
  check({{{"edit", "x", "--find"},
          "tavicli edit",
          "Missing value for '--find <find>'",
          "--find <find>  Exact text to find (required). Repeat for batch edits. Interprets \\n, "
          "\\t, \\r, \\\\."},
         {{"append", "x", "-c"},
          "tavicli append",
          "Missing value for '-c <content>'",
          "-c <content>  Content to add to the note. Read from stdin when omitted. Interprets "
          "\\n, \\t, \\r, \\\\."},
         // The terminator is no value, and neither is what stands behind it.
         {{"list", "--limit", "--", "5"},
          "tavicli list",
          "Missing value for '--limit <limit>'",
          "--limit <limit>  " + limit}});
}

TEST_F(RefusedLines, GiveAValueThatIsNone) {
  const std::string limit = "Maximum number of notes to return. Default: all.";
  const std::string format = "Output format: tsv, csv, json.";
  const std::string choice = ". Please provide one of 'tsv', 'csv' or 'json'.";
  const std::vector<Refused> refusals{
      {{"list", "--limit", "abc"},
       "tavicli list",
       "The value 'abc' is invalid for '--limit <limit>'",
       "--limit <limit>  " + limit},
      {{"list", "-n", "1.5"},
       "tavicli list",
       "The value '1.5' is invalid for '-n <limit>'",
       "-n <limit>  " + limit},
      {{"list", "-n=x"},
       "tavicli list",
       "The value 'x' is invalid for '-n <limit>'",
       "-n <limit>  " + limit},
      {{"list", "--limit="},
       "tavicli list",
       "The value '' is invalid for '--limit <limit>'",
       "--limit <limit>  " + limit},
      {{"list", "--offset", "9223372036854775808"},
       "tavicli list",
       "The value '9223372036854775808' is invalid for '--offset <offset>'",
       "--offset <offset>  Number of notes to skip."},
      {{"search-in", "x", "-s", "y", "--context", "wide"},
       "tavicli search-in",
       "The value 'wide' is invalid for '--context <context>'",
       "--context <context>  Snippet length in characters surrounding each match. Defaults to "
       "120."},
      {{"list", "--format", "xml"},
       "tavicli list",
       "The value 'xml' is invalid for '--format <format>'" + choice,
       "--format <format>  " + format},
      {{"create", "x", "--format=JSON"},
       "tavicli create",
       "The value 'JSON' is invalid for '--format <format>'" + choice,
       "--format <format>  " + format},
      {{"attachments", "--format", ""},
       "tavicli attachments list",
       "The value '' is invalid for '--format <format>'" + choice,
       "--format <format>  " + format},
      // The first fault of a line is the one that is told.
      {{"list", "--limit", "abc", "--offset", "x", "--bogus"},
       "tavicli list",
       "The value 'abc' is invalid for '--limit <limit>'",
       "--limit <limit>  " + limit},
  };
  check(refusals);
  checkInJSON(refusals);
}

TEST_F(RefusedLines, GiveAValueToAFlag) {
  const auto message = [](const std::string& flag, const std::string& value) {
    return "The option '" + flag + "' does not take any value, but '" + value + "' was specified.";
  };
  const std::vector<Refused> refusals{
      {{"edit", "x", "--force=1"}, "tavicli edit", message("--force", "1")},
      {{"list", "--count="}, "tavicli list", message("--count", "")},
      {{"tags", "list", "--count=yes"}, "tavicli tags list", message("--count", "yes")},
      {{"open", "--new-window=no"}, "tavicli open", message("--new-window", "no")},
      {{"--version=2"}, "tavicli", message("--version", "2")},
      {{"-v=2", "list"}, "tavicli", message("-v", "2")},
  };
  check(refusals);
  checkInJSON(refusals);
}

TEST_F(RefusedLines, HaveValuesTooMany) {
  const std::vector<Refused> refusals{
      {{"list", "x"}, "tavicli list", "Unexpected argument 'x'"},
      {{"list", "a", "--count", "b"}, "tavicli list", "2 unexpected arguments: 'a', 'b'"},
      {{"show", "x", ""}, "tavicli show", "Unexpected argument ''"},
      {{"search", "a", "b", "c"}, "tavicli search", "2 unexpected arguments: 'b', 'c'"},
      {{"tags", "list", "x", "work"}, "tavicli tags list", "Unexpected argument 'work'"},
      {{"pin", "x", "add", "global"},
       "tavicli pin list",
       "2 unexpected arguments: 'add', 'global'"},
  };
  check(refusals);
  checkInJSON(refusals);
  check({{{"lst"}, "tavicli", "Unexpected argument 'lst'"},
         {{"List"}, "tavicli", "Unexpected argument 'List'"},
         {{"--", "list"}, "tavicli", "Unexpected argument 'list'"},
         {{"list", "--", "--count"}, "tavicli list", "Unexpected argument '--count'"},
         {{"help", "nosuch", "extra"}, "tavicli", "2 unexpected arguments: 'nosuch', 'extra'"},
         {{"tags", "rename", "a", "b", "c"}, "tavicli tags rename", "Unexpected argument 'c'"},
         {{"mcp-server", "stdio"}, "tavicli mcp-server", "Unexpected argument 'stdio'"}});
}

TEST_F(RefusedLines, AskForAShellThatIsNotServed) {
  const std::string names =
      "\nPlease use --generate-completion-script=<shell> with one of:\n    zsh bash fish";
  const std::vector<Refused> refusals{
      {{"--generate-completion-script", "tcsh"},
       "tavicli",
       "Can't generate completion scripts for 'tcsh'." + names},
      {{"--generate-completion-script=", "list"},
       "tavicli",
       "Can't generate completion scripts for ''." + names},
  };
  check(refusals);
  checkInJSON(refusals);
  ::unsetenv("SHELL");
  check({{{"--generate-completion-script"},
          "tavicli",
          "Can't autodetect a supported shell." + names}});
}

}  // namespace
}  // namespace tavi

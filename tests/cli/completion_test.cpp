#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "support/completing_shell.h"
#include "support/foreign_client.h"
#include "support/program.h"
#include "support/throwaway_home.h"

// Completes command lines of the built program in real shells and with the requests of their
// scripts.

namespace tavi {
namespace {

namespace fs = std::filesystem;

using support::CompletingShell;
using support::runProgram;
using ::testing::HasSubstr;
using Line = std::vector<std::string>;
using Candidates = CompletingShell::Texts;

/// A home with notes whose titles and tags are hard to quote in shells.
class Notes : public ::testing::Test {
 protected:
  void writeNotes() {
    for (const std::string& title : titles) create({"--", title}, "");
    create({"Mars", "--tags", "space,red planet,work/draft", "--fields", "id"}, "The planet.");
    marsID = created;
    create({"Old", "--tags", "past"}, "");
    done({"archive", "--title", "Old"});
    done({"attachments", "add", "--title", "mars", "--filename", "my photo.jpg"}, "bytes");
    done({"attachments", "add", "--title", "mars", "--filename", "map.png"}, "bytes");
    done({"pin", "add", "--title", "mars", "global", "red planet"});
  }

  void create(Line arguments, const std::string& content) {
    arguments.insert(arguments.begin(), "create");
    created = done(arguments, content);
    created.erase(std::min(created.find('\n'), created.size()));
  }
  static std::string done(const Line& arguments, const std::string& input = "") {
    const auto result = runProgram(arguments, input);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
  }

  /// All files below the home with their sizes.
  std::map<std::string, std::uintmax_t> files() const {
    std::map<std::string, std::uintmax_t> result;
    for (const auto& entry : fs::recursive_directory_iterator(home.path()))
      result[entry.path()] = entry.is_regular_file() ? entry.file_size() : 0;
    return result;
  }

  support::ThrowawayHome home;
  const Candidates titles{"War and Peace", "What's \"$HOME\"?", "Hello!World", "a:b, c;d & e",
                          "back\\slash",   "un`paired $(date)", "Über [1] *",  "Warum"};
  std::string marsID, created;

  Candidates titlesWith(std::initializer_list<std::string> more) const {
    Candidates all = titles;
    all.insert(more);
    return all;
  }
};

class CompletionInShells : public Notes, public ::testing::WithParamInterface<const char*> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(CompletingShell::isInstalled(GetParam())) << "scripts/setup --test installs it";
    shell.emplace(GetParam(), TAVICLI_PROGRAM, home.path());
  }
  std::optional<CompletingShell> shell;
};

TEST_P(CompletionInShells, OffersWhatTheCommandsTake) {
  writeNotes();
  std::ofstream(home.path() / "photo.jpg");
  const Candidates everyTag{"space", "red planet", "work/draft", "past"};
  struct Case {
    std::string line;
    Candidates offered;
  };
  for (const auto& [line, expected] : std::initializer_list<Case>{
           {"tavicli ",
            {"cat", "show", "list", "search", "search-in", "edit", "overwrite", "create", "append",
             "tags", "pin", "trash", "archive", "restore", "open", "attachments", "mcp-server",
             "help"}},
           {"tavicli sea", {"search", "search-in"}},
           {"tavicli tags ", {"list", "add", "remove", "rename", "delete"}},
           {"tavicli help at", {"attachments"}},
           {"tavicli append --no", {"--no-update-modified"}},
           {"tavicli list --",
            {"--sort", "--limit", "--offset", "--location", "--tag", "--count", "--format",
             "--fields", "--help"}},
           {"tavicli list --format ", {"tsv", "csv", "json"}},
           {"tavicli list --location ", {"notes", "trash", "archive", "all"}},
           {"tavicli append --position ", {"beginning", "end"}},
           {"tavicli list --sort m", {"modified", "modified:asc", "modified:desc"}},
           {"tavicli list --sort modified:asc,",
            {"modified:asc,pinned", "modified:asc,pinned:asc", "modified:asc,pinned:desc",
             "modified:asc,created", "modified:asc,created:asc", "modified:asc,created:desc",
             "modified:asc,title", "modified:asc,title:asc", "modified:asc,title:desc"}},
           {"tavicli search-in --fields ", {"all", "offset", "snippet"}},
           {"tavicli show --fields id,ti", {"id,title"}},
           {"tavicli cat --title ", titlesWith({"Mars"})},
           {"tavicli open -t W", {"War and Peace", "What's \"$HOME\"?", "Warum"}},
           {"tavicli trash --title=M", {"Mars"}},
           {"tavicli list --tag ", everyTag},
           {"tavicli list --tag wo", {"work/draft"}},
           {"tavicli list --tag \\#r", {"#red planet#"}},
           {"tavicli search \\#", {"#space", "#red planet#", "#work/draft", "#past"}},
           {"tavicli search -q \\!\\#wo", {"!#work/draft"}},
           {"tavicli search @to", {"@today", "@todo"}},
           {"tavicli search --query=-@untag", {"-@untagged"}},
           {"tavicli create x --tags past,sp", {"past,space"}},
           {"tavicli tags rename p", {"past"}},
           {"tavicli tags delete --name s", {"space"}},
           {"tavicli tags add --title Old ", everyTag},
           {"tavicli tags remove --title Mars ", {"space", "red planet", "work/draft"}},
           {"tavicli tags remove -t mars space ", {"red planet", "work/draft"}},
           {"tavicli pin add " + marsID + " ",
            {"space", "red planet", "work/draft", "past", "global"}},
           {"tavicli pin remove " + marsID + " ", {"red planet", "global"}},
           {"tavicli attachments save --title Mars --filename ", {"my photo.jpg", "map.png"}},
           {"tavicli attachments delete " + marsID + " -f m", {"my photo.jpg", "map.png"}},
           {"tavicli attachments save --filename ", {}},
           {"tavicli attachments add --title Mars --filename ph", {"photo.jpg"}},
           {"tavicli cat " + marsID.substr(0, 10), {marsID}},
       })
    EXPECT_EQ(shell->offered(line), expected) << line << "[TAB]";
}

TEST_P(CompletionInShells, PutsListsAndQueriesIntoTheLine) {
  writeNotes();
  EXPECT_EQ(shell->entered("tavicli create x --tags past,r"),
            "<create><x><--tags><past,red planet>");
  EXPECT_EQ(shell->entered("tavicli list --sort=pinned,ti"), "<list><--sort=pinned,title>");
  EXPECT_EQ(shell->entered("tavicli search 'a @unti"), "<search><a @untitled>");
  EXPECT_EQ(shell->entered("tavicli search \"a -#red pl"), "<search><a -#red planet#>");
  EXPECT_EQ(shell->entered("tavicli search a\\ or\\ \\#spa"), "<search><a or #space>");
}

INSTANTIATE_TEST_SUITE_P(Shells, CompletionInShells, ::testing::Values("bash", "zsh", "fish"),
                         [](const auto& shell) { return std::string(shell.param); });

/// Requests as completion scripts send them. `words`: those of the line after the program's name.
class CompletionAnswer : public Notes {
 protected:
  static std::string answer(const Line& path, const std::string& argument, const Line& words) {
    Line request{"---completion"};
    request.insert(request.end(), path.begin(), path.end());
    request.insert(request.end(), {"--", argument, "tavicli"});
    request.insert(request.end(), words.begin(), words.end());
    const auto result = runProgram(request);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }
  static std::string titlesAnswered() { return answer({"cat"}, "--title", {"cat", "-t", ""}); }
};

TEST_F(CompletionAnswer, HasOneCandidateALine) {
  EXPECT_EQ(titlesAnswered(), "");
  create({"--", "-dash"}, "");
  EXPECT_EQ(titlesAnswered(), "");  // the parser would not accept it there
  EXPECT_EQ(answer({"cat"}, "--title", {"cat", "--title=-d"}), "-dash\n");
  create({"Mars"}, "");
  EXPECT_EQ(titlesAnswered(), "Mars\n");
  EXPECT_EQ(answer({"create"}, "--tags", {"create", "--tags", ""}), "");
}

TEST_F(CompletionAnswer, CompletesTheLastTermOfAQuery) {
  writeNotes();
  for (const auto& [query, completed] : {std::pair{"#w", "#work/draft\n"},
                                         {"a #red", "a #red planet#\n"},
                                         {"#red plan", "#red planet#\n"},
                                         {"#red planet# -!#p", "#red planet# -!#past\n"},
                                         {"\"a #b\" -@ocr", "\"a #b\" -@ocr\n"},
                                         {"\"a \\\" @oc", ""},
                                         {"\"#red\" pl", ""},
                                         {"@date(>", ""},
                                         {"a", ""},
                                         {"", ""}})
    EXPECT_EQ(answer({"search"}, "--query", {"search", "-q", query}), completed) << query;
}

TEST_F(CompletionAnswer, KnowsTheNoteOfTheLineInEveryForm) {
  writeNotes();
  const std::string names = "my photo.jpg\nmap.png\n";
  for (const Line& words : {Line{"--title", "Mars", "-f", ""},
                            {"--title=mars", "--filename=m"},
                            {"-f", "x", "-t", "MARS", "--filename", "m"},
                            {"--format", "json", marsID, "--filename", ""}}) {
    Line line{"attachments", "save"};
    line.insert(line.end(), words.begin(), words.end());
    EXPECT_EQ(answer({"attachments", "save"}, "--filename", line), names);
  }
  // `tags` without a subcommand is `tags list`.
  EXPECT_THAT(answer({"tags", "list"}, "positional@0", {"tags", marsID.substr(0, 4)}),
              HasSubstr(marsID + "\n"));
}

TEST_F(CompletionAnswer, IsNothingWheneverSomethingIsWrong) {
  EXPECT_EQ(answer({"nosuch"}, "--title", {}), "");
  EXPECT_EQ(answer({"cat"}, "--nosuch", {}), "");
  EXPECT_EQ(answer({"cat"}, "--offset", {"cat", "--offset", ""}), "");
  EXPECT_EQ(runProgram({"---completion"}).output, "");
  EXPECT_EQ(runProgram({"---completion", "--help"}).output, "");
  EXPECT_EQ(runProgram({"---completion"}).exitCode, 0);
  EXPECT_FALSE(fs::exists(home.data()));

  create({"Mars"}, "");
  EXPECT_EQ(titlesAnswered(), "Mars\n");
  EXPECT_EQ(answer({"cat"}, "--title", {"cat", "-t", "M\xff"}), "");
  EXPECT_EQ(answer({"attachments", "save"}, "--filename", {"attachments", "save", "-f", ""}), "");
  EXPECT_EQ(answer({"tags", "remove"}, "positional@1", {"tags", "remove", "nosuch", ""}), "");

  home.lockApplication();
  EXPECT_EQ(titlesAnswered(), "");
  fs::remove_all(home.path() / "Library");
  std::ofstream(home.database()) << std::string(100000, 'x');
  EXPECT_EQ(titlesAnswered(), "");
}

TEST_F(CompletionAnswer, ReadsAndLeavesEverythingAsItIs) {
  create({"Mars"}, "");
  support::ForeignClient writer(home.database());
  writer.run("BEGIN IMMEDIATE");
  writer.run("UPDATE note SET title = 'Moon'");
  const auto before = files();
  EXPECT_EQ(titlesAnswered(), "Mars\n");  // without waiting for the writer
  EXPECT_EQ(files(), before);
  writer.run("ROLLBACK");
  writer.run("UPDATE note SET title = 'Moon'");
  EXPECT_EQ(titlesAnswered(), "Moon\n") << "which the log alone has";

  writer.run("PRAGMA wal_checkpoint(TRUNCATE)");
  writer.run("PRAGMA journal_mode = DELETE");  // neither a log nor a log index
  writer.run("PRAGMA journal_mode = WAL");
  const auto quiet = files();
  EXPECT_EQ(titlesAnswered(), "Moon\n");
  EXPECT_EQ(files(), quiet);

  fs::permissions(home.data(), fs::perms::owner_read | fs::perms::owner_exec);
  EXPECT_EQ(titlesAnswered(), "Moon\n");
}

TEST_F(CompletionAnswer, PostsNoSignalToTheApplication) {
  create({"Mars"}, "");
  const fs::path signal = home.data() / "net.kelvaro.tavi.cli.didRequestRefresh";
  ASSERT_TRUE(fs::exists(signal));
  fs::remove(signal);
  EXPECT_EQ(titlesAnswered(), "Mars\n");
  EXPECT_FALSE(fs::exists(signal));
}

}  // namespace
}  // namespace tavi

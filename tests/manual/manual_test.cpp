#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "ArgumentParser/command_tree.h"
#include "cli/help.h"
#include "cli/help_texts.h"
#include "cli/tavi_cli.h"
#include "manual/manual_pages.h"
#include "manual/roff.h"
#include "manual/search_terms_page.h"
#include "platform/model/search/directives.h"
#include "support/every_command.h"
#include "support/throwaway_home.h"

// The pages as `man` shows them, and what is installed as its readers find it.

namespace tavi::manual {
namespace {

namespace fs = std::filesystem;

using ArgumentParser::CommandStack;
using support::forEachCommand;
using ::testing::HasSubstr;

const ArgumentParser::CommandType kRoot = ArgumentParser::commandType<TaviCLI>();
const Release kRelease{.version = "1.0.0", .date = "2026-11-25"};

/// What a script prints, errors included.
std::string shell(const std::string& script) {
  std::FILE* pipe = ::popen(("exec 2>&1; " + script).c_str(), "r");
  std::string output;
  for (int byte; (byte = std::fgetc(pipe)) != EOF;) output += static_cast<char>(byte);
  const int status = ::pclose(pipe);
  if (WEXITSTATUS(status) != 0) output += "exit " + std::to_string(WEXITSTATUS(status)) + "\n";
  return output;
}

class ManualPages : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(std::system("for p in man zsh fish; do command -v $p >/dev/null || exit 1; done"), 0)
        << "scripts/setup --test installs them";
    ::setenv("LC_ALL", "C.UTF-8", 1);
    ::setenv("MANWIDTH", "100", 1);
    ::setenv("MANPAGER", "cat", 1);
  }

  /// The page as it is read in a terminal, with what two formatters have against it.
  std::string shown(const std::string& page, int section = 1) {
    file = home.path() / ("page." + std::to_string(section));
    std::ofstream(file) << page;
    return shell("mandoc -T lint " + file.string() + "; man --warnings -l " + file.string());
  }

  support::ThrowawayHome home;
  fs::path file;  ///< of the page shown last
};

/// Texts with single blanks for all their white space.
std::string squeezed(const std::string& text) {
  std::string result;
  for (const std::string& word : support::wordsOf(text)) result += word + " ";
  return result;
}

std::string pageName(const CommandStack& stack) {
  std::string name = ArgumentParser::commandPath(stack);
  std::ranges::replace(name, ' ', '-');
  return name;
}

TEST_F(ManualPages, SayWhatTheHelpSays) {
  std::map<std::string, std::string> pages, whatis;
  for (const auto& page : manualPages(kRoot, kRelease)) {
    pages[page.name] = shown(page.text);
    whatis[page.name] = shell("lexgrog " + file.string());
  }
  std::size_t count = 0;
  forEachCommand({kRoot}, [&](const CommandStack& stack) {
    ++count;
    const std::string page = pages[pageName(stack)];
    EXPECT_THAT(page, ::testing::Not(HasSubstr("warning"))) << page;
    EXPECT_THAT(page, ::testing::Not(HasSubstr("mandoc:"))) << page;
    const std::string words = squeezed(page);
    // What whatis(1) will say: no escapes.
    EXPECT_THAT(whatis[pageName(stack)], HasSubstr(" - ")) << pageName(stack);
    EXPECT_THAT(whatis[pageName(stack)], ::testing::Not(HasSubstr("\\")));
    const ArgumentParser::DeclaredCommand declared(stack.back());
    for (const auto& argument : declared.arguments.definitions()) {
      EXPECT_THAT(words, HasSubstr(squeezed(argument.abstract)));
      for (const auto& name : argument.names) EXPECT_THAT(words, HasSubstr(name.written()));
    }
    const auto* footer = dynamic_cast<const HelpFooter*>(declared.command.get());
    const std::string below(footer ? footer->footer() : stack.size() == 1 ? overviewText : "");
    for (std::string line : support::linesOf(below)) {
      if (line.starts_with("  ")) {  // stands as it is, at the page's own indent
        EXPECT_THAT(page, HasSubstr("\n     " + line + "\n"));
      } else {
        if (line.ends_with(':')) line.pop_back();
        EXPECT_THAT(words, HasSubstr(squeezed(line)));
      }
    }
  });
  EXPECT_EQ(pages.size(), count);
}

TEST_F(ManualPages, TellOfEveryDirective) {
  const std::string page = shown(searchTermsPage(kRelease).text, 7);
  EXPECT_THAT(page, ::testing::Not(HasSubstr("warning")));
  EXPECT_THAT(page, ::testing::Not(HasSubstr("mandoc:")));
  EXPECT_THAT(page, HasSubstr("\n       @todo  with open to"));
  EXPECT_THAT(page, HasSubstr("\n       #tag   Notes with the tag or one below it.\n"));
  for (const auto& [word, finds] : tavimodel::searchDirectives()) {
    EXPECT_THAT(squeezed(page), HasSubstr(word + " " + finds));
  }
}

TEST_F(ManualPages, AreLaidOutAsManualsAre) {
  ::setenv("MANWIDTH", "80", 1);
  const auto pages = manualPages(kRoot, kRelease);
  const auto page = std::ranges::find(pages, "tavicli-tags-add", &ManualPage::name);
  ASSERT_NE(page, pages.end());
  EXPECT_EQ(shown(page->text),
            R"(TAVICLI-TAGS-ADD(1)              User Commands             TAVICLI-TAGS-ADD(1)

NAME
       tavicli-tags-add - Add tags to a note

SYNOPSIS
       tavicli tags add [note-id] [tags ...] [--title title]

DESCRIPTION
       Add tags to a note.

ARGUMENTS
       note-id
              Note ID, followed by tags to add.

       tags   Tag names to add. Surrounding # and whitespace are stripped.
              Nested tags use slashes (e.g. work/draft); spaces are allowed in
              tag names. Already-present tags are silently skipped.

OPTIONS
       -t, --title title
              Case-insensitive note title. Mutually exclusive with id.

       -h, --help
              Show help information.

OUTPUT
       Nothing on success. Exit code is the success signal; errors go to
       stderr.

NOTE
       Tags are inserted at the position configured in Tavi settings
       (top or bottom of the note). Does not change the note's modification date.

EXAMPLES
       tavicli tags add <id> work "work/meetings"
       tavicli tags add --title "Mars" favorite

EXIT STATUS
       0      Success, also where nothing was found to print.

       1      The command could not be done; a message says why.

       64     The command line cannot be taken.

SEE ALSO
       tavicli(1), tavicli-tags(1)

tavicli 1.0.0                     2026-11-25               TAVICLI-TAGS-ADD(1)
)");
}

TEST_F(ManualPages, TakeNothingInATextForMarkup) {
  const std::string hostile = "\\fBa\\e \\n(.x `b` 'c' \"d\" ^~ --e - — → Ü [x] \\";
  for (const auto& text :
       std::vector<std::string>{hostile, ".SH x", "'br", ". x", "\\\"", ".\"", "..."}) {
    Roff page({.name = "a-b", .date = "2026-11-25", .program = "c \"1\""});
    page.section("S " + text);
    page.paragraph(text);
    page.item(Roff::bold("a label: " + text), text);
    page.verbatim(text + "\n\n  " + text);
    const std::string result = shown(page.take());
    EXPECT_THAT(result, ::testing::Not(HasSubstr("warning")));
    EXPECT_THAT(result, HasSubstr("\nS " + text + "\n"));
    EXPECT_THAT(result, HasSubstr("\n       " + text + "\n"));
    EXPECT_THAT(result, HasSubstr("\n              " + text + "\n"));
    EXPECT_THAT(result, HasSubstr("\n       " + text + "\n\n         " + text + "\n"));
  }
}

/// The built program, installed into the home.
class Installed : public ManualPages {
 protected:
  void SetUp() override {
    ManualPages::SetUp();
    const std::string prefix = home.path() / "usr";
    ASSERT_THAT(
        shell(std::string(CMAKE_PROGRAM) + " --install " BUILD_FOLDER " --prefix " + prefix),
        ::testing::Not(HasSubstr("exit ")));
    ::setenv("prefix", prefix.c_str(), 1);
  }
};

TEST_F(Installed, IsFoundByManAndTheShells) {
  EXPECT_THAT(shell("MANPATH=$prefix/share/man man tavicli-edit"),
              HasSubstr("tavicli-edit - Edit a note by finding exact string"));
  EXPECT_THAT(shell("$prefix/bin/tavicli --version"), HasSubstr("."));
  for (const std::string program : {"tavicli", "tavi-import", "tavi-export"}) {
    ::setenv("program", program.c_str(), 1);
    EXPECT_EQ(shell("bash -c '. $prefix/share/bash-completion/completions/$program;"
                    "complete -p $program'"),
              "complete -o filenames -F _" + program + " " + program + "\n");
    EXPECT_EQ(shell("zsh -fc 'fpath=($prefix/share/zsh/site-functions $fpath);"
                    "autoload -Uz compinit; compinit -u -D; echo $_comps[$program]'"),
              "_" + program + "\n");
    EXPECT_EQ(shell("PATH=$prefix/bin:$PATH XDG_DATA_DIRS=$prefix/share fish -c 'complete -C "
                    "\"$program --h\"'"),
              "--help\tShow help information.\n");
  }
}

TEST_F(Installed, HasPagesWithoutFindings) {
  EXPECT_EQ(shell("for page in $prefix/share/man/man?/*; do"
                  "  mandoc -T lint $page; man --warnings -l $page >/dev/null;"
                  "  lexgrog $page | grep -F -e '\\' -e '[u' -e 'parse failed'; done; true"),
            "");
}

// The static program carries a part of ICU's data only.
TEST_F(Installed, SortsByTheRulesOfTheUsersLanguage) {
  shell("for title in zebra öl ol; do $prefix/bin/tavicli create $title; done");
  const std::string sorted =
      "$prefix/bin/tavicli search --query -x --sort title:asc --fields title";
  EXPECT_EQ(shell("LC_ALL=sv_SE.UTF-8 " + sorted), "ol\nzebra\nöl\n");
  EXPECT_EQ(shell("LC_ALL=de_DE.UTF-8 " + sorted), "ol\nöl\nzebra\n");
}

}  // namespace
}  // namespace tavi::manual

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "ArgumentParser/completion_script.h"
#include "ArgumentParser/completion_shell.h"
#include "shelf.h"
#include "terminal.h"

// Each test runs in each shell: in a terminal, with the shelf as the program.

namespace ArgumentParser {
namespace {

namespace fs = std::filesystem;

using Texts = std::set<std::string>;

const CommandType kShelf = commandType<shelf::Shelf>();

std::string read(const fs::path& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

class Completion : public testing::TestWithParam<CompletionShell> {
 protected:
  Completion() {
    std::string pattern = (fs::temp_directory_path() / "shelf-XXXXXX").string();
    home_ = mkdtemp(pattern.data());
    std::ofstream(home_ / "script") << completionScript(kShelf, GetParam()) << "\n";
    std::ofstream(home_ / "setup") << setUpOf(GetParam());
    fs::create_directory(home_ / "folder");
    for (const char* file : {"page.txt", "image.png", "folder/note one.txt"})
      std::ofstream(home_ / file);
  }
  ~Completion() override { fs::remove_all(home_); }

  void SetUp() override {
    const std::string shell(name(GetParam()));
    if (std::system(("command -v " + shell + " >/dev/null").c_str()) != 0)
      GTEST_SKIP() << shell << " is not installed";
    std::vector<std::string> command{shell, "--norc", "--noprofile", "-i"};
    if (shell == "zsh") command = {shell, "-f", "-i"};
    if (shell == "fish") command = {shell, "--no-config", "-i"};
    terminal_.emplace(command, home_, environment());
    terminal_->type(". ./setup\n");
    terminal_->readUntil("DONE\r\n");
  }

  /// The texts offered for the word at the end of the line, without quoting.
  Texts offered(const std::string& line) {
    std::ofstream(home_ / "offered");
    std::ofstream(home_ / "line") << line;
    terminal_->type(GetParam() == CompletionShell::zsh ? "\x14" : "offer\n");
    terminal_->readUntil("DONE\r\n");
    std::istringstream lines(read(home_ / "offered"));
    Texts result;
    for (std::string text; std::getline(lines, text);) {
      text.erase(std::min(text.find('\t'), text.size()));  // a description
      if (text.starts_with("--") && text.find('=') != text.npos)
        text.erase(0, text.ends_with('=') ? 0 : text.find('=') + 1);
      while (text.ends_with('=') || text.ends_with('/')) text.pop_back();
      if (!text.empty()) result.insert(text);
    }
    return result;
  }

  /// The arguments that the program gets when the line is completed and entered.
  std::string entered(const std::string& line) {
    terminal_->type(line + "\t\n");
    std::string output = terminal_->readUntil("DONE\r\n");
    output.erase(output.rfind("\r\nDONE"));
    return output.substr(output.rfind("\r\n") + 2);
  }

 private:
  Terminal::Environment environment() const {
    const char* path = std::getenv("PATH");
    return {{"HOME", home_},
            {"PATH", std::string(SHELF_FOLDER) + ":" + (path ? path : "/usr/bin:/bin")},
            {"TERM", "dumb"},
            {"LC_ALL", "C.UTF-8"}};
  }

  static std::string setUpOf(CompletionShell shell);

  fs::path home_;
  std::optional<Terminal> terminal_;
};

/// Makes `shelf` print its arguments, and `offer` (in zsh, Control-T) write what is offered for the
/// text in the file "line" into the file "offered".
std::string Completion::setUpOf(CompletionShell shell) {
  const std::string program = R"sh(
shelf() {
    if [ "$1" = ---completion ]; then command shelf "$@"; return; fi
    printf '<%s>' "$@"
    printf '\nDONE\n'
}
)sh";
  switch (shell) {
    case CompletionShell::bash:  // words are cut as readline cuts them
      return program + R"sh(
. ./script
offer() {
    COMP_LINE="$(cat line)"
    COMP_POINT="${#COMP_LINE}"
    local line="${COMP_LINE//=/ = }"
    read -ra COMP_WORDS <<<"${line}"
    [[ "${line}" == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _shelf shelf "${COMP_WORDS[COMP_CWORD]}" ''
    eval "printf '%s\n' ${COMPREPLY[*]}" >offered
    echo DONE
}
echo DONE
)sh";
    case CompletionShell::zsh:
      return program + R"sh(
autoload -Uz compinit
compinit -u -d dump
bindkey -e
setopt no_beep
. ./script
compadd() {
    if [[ ${(@)argv[1,(i)(-|--)]} != *-[OAD]* ]]; then
        local -a hits
        builtin compadd -O hits "$@"
        print -rl -- "${(@)hits}" >>$HOME/offered
    fi
    builtin compadd "$@"
}
offer() {
    BUFFER="$(<line)"
    CURSOR=${#BUFFER}
    zle complete-word
    BUFFER=''
    zle -I
    echo DONE
}
zle -N offer
bindkey '^T' offer
echo DONE
)sh";
    case CompletionShell::fish:
      return R"sh(
function shelf
    if test "$argv[1]" = ---completion
        command shelf $argv
        return
    end
    printf '<%s>' $argv
    printf '\nDONE\n'
end
function fish_prompt
    echo '> '
end
. ./script
function offer
    complete -C (cat line) >offered
    echo DONE
end
echo DONE
)sh";
  }
  return {};
}

TEST_P(Completion, OffersWhatMayStandAtTheCursor) {
  const Texts titles{"War and Peace", "What's \"$HOME\"?", "Faust",      "a:b",
                     "a;b & c",       "Über [1] *",        "back\\slash"};
  struct Case {
    std::string line;
    Texts offered;
  };
  for (const auto& [line, expected] : std::initializer_list<Case>{
           {"shelf ", {"list", "edit", "tags", "scan", "help"}},
           {"shelf l", {"list"}},
           {"shelf bogus ", {}},
           {"shelf help ", {"list", "edit", "tags", "scan"}},
           {"shelf list --",
            {"--sort", "--limit", "--offset", "--shelf", "--count", "--format", "--fields",
             "--help"}},
           // What is given is not offered again, under none of its names.
           {"shelf list -s x --limit=5 --count --format csv --o", {"--offset"}},
           {"shelf list -s x --s", {"--shelf"}},
           {"shelf ls --count --fi", {"--fields"}},
           // It is if it repeats.
           {"shelf edit --find x --f", {"--find", "--force"}},
           {"shelf edit -f --force --force --f", {"--find"}},
           {"shelf list --sort ", {"title", "year of print"}},
           {"shelf list -s y", {"year of print"}},
           {"shelf list --sort=y", {"year of print"}},
           {"shelf list --format ", {"tsv", "csv", "json"}},
           {"shelf list --limit ", {}},
           {"shelf tags ", {"list", "add"}},
           {"shelf tags --", {"--count", "--help"}},
           {"shelf tags x --", {"--count", "--help"}},
           {"shelf tags add 1 ", {"novel", "science fiction"}},
           {"shelf tags add 1 novel n", {"novel"}},
           {"shelf tags add --note x 1 s", {"science fiction"}},
           {"shelf tags add -- 1 --", {}},
           {"shelf scan --printer ", {"laser jet", "ink"}},
           {"shelf scan ", {"page.txt", "folder"}},
           {"shelf scan x ", {"folder"}},
           {"shelf edit ", titles},
           {"shelf edit --title ", titles},
           {"shelf edit W", {"War and Peace", "What's \"$HOME\"?"}},
       })
    EXPECT_EQ(offered(line), expected) << line << "[TAB]";
}

TEST_P(Completion, TellsTheProgramTheLineAndTheShell) {
  const std::string shell(name(GetParam()));
  EXPECT_EQ(offered("shelf edit --title x --find "),
            (Texts{"words|shelf|edit|--title|x|--find|", "shell " + shell, "version"}));
  EXPECT_EQ(offered("shelf edit --find w"), (Texts{"words|shelf|edit|--find|w"}));
}

TEST_P(Completion, OffersNothingWhenTheProgramFails) {
  EXPECT_EQ(offered("shelf edit nothing --title "), Texts{});
}

TEST_P(Completion, QuotesWhatItPutsIntoTheLine) {
  struct Case {
    std::string line;
    std::string arguments;
  };
  for (const auto& [line, arguments] : std::initializer_list<Case>{
           {"shelf edit War", "<edit><War and Peace>"},
           {"shelf edit \"War a", "<edit><War and Peace>"},
           {"shelf edit 'War a", "<edit><War and Peace>"},
           {"shelf edit War\\ a", "<edit><War and Peace>"},
           {"shelf edit What", "<edit><What's \"$HOME\"?>"},
           {"shelf edit \"What", "<edit><What's \"$HOME\"?>"},
           {"shelf edit a:", "<edit><a:b>"},
           {"shelf edit 'a;", "<edit><a;b & c>"},
           {"shelf edit Üb", "<edit><Über [1] *>"},
           {"shelf edit back", "<edit><back\\slash>"},
           {"shelf edit --title What", "<edit><--title><What's \"$HOME\"?>"},
           {"shelf edit --title=Wh", "<edit><--title=What's \"$HOME\"?>"},
           {"shelf list --sort ye", "<list><--sort><year of print>"},
           {"shelf scan folder/no", "<scan><folder/note one.txt>"},
           {"shelf lis", "<list>"},
       })
    EXPECT_EQ(entered(line), arguments) << line << "[TAB]";
}

INSTANTIATE_TEST_SUITE_P(Shells, Completion,
                         testing::Values(CompletionShell::bash, CompletionShell::zsh,
                                         CompletionShell::fish),
                         [](const auto& shell) { return std::string(name(shell.param)); });

}  // namespace
}  // namespace ArgumentParser

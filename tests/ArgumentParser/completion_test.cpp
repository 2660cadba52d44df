#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "ArgumentParser/completion_shell.h"
#include "support/completing_shell.h"

// Each test runs in each shell, in a terminal, with the shelf program.

namespace ArgumentParser {
namespace {

namespace fs = std::filesystem;

using support::CompletingShell;
using Texts = CompletingShell::Texts;

class Completion : public testing::TestWithParam<CompletionShell> {
 protected:
  Completion() {
    std::string pattern = (fs::temp_directory_path() / "shelf-XXXXXX").string();
    home_ = mkdtemp(pattern.data());
    fs::create_directory(home_ / "folder");
    for (const char* file : {"page.txt", "image.png", "folder/note one.txt"})
      std::ofstream(home_ / file);
  }
  ~Completion() override { fs::remove_all(home_); }

  void SetUp() override {
    const std::string shell(name(GetParam()));
    ASSERT_TRUE(CompletingShell::isInstalled(shell)) << "scripts/setup --test installs " << shell;
    shell_.emplace(shell, SHELF_PROGRAM, home_);
  }

  Texts offered(const std::string& line) { return shell_->offered(line); }
  std::string entered(const std::string& line) { return shell_->entered(line); }

 private:
  fs::path home_;
  std::optional<CompletingShell> shell_;
};

TEST_P(Completion, OffersWhatMayStandAtTheCursor) {
  const Texts titles{"War and Peace", "What's \"$HOME\"?", "Hello!World",       "a:b",
                     "a;b & c",       "Über [1] *",        "un`paired $(date)", "back\\slash"};
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
           // An option that was given is not offered again, under any of its names,
           {"shelf list -s x --limit=5 --count --format csv --o", {"--offset"}},
           {"shelf list -s x --s", {"--shelf"}},
           {"shelf ls --count --fi", {"--fields"}},
           // unless it may be repeated.
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
           {"shelf edit Hello", "<edit><Hello!World>"},
           {"shelf edit \"Hello", "<edit><Hello!World>"},
           {"shelf edit un", "<edit><un`paired $(date)>"},
           {"shelf edit \"un", "<edit><un`paired $(date)>"},
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

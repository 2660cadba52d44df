#include "support/completing_shell.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

namespace support {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path& file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// The start-up scripts of the shells: PROGRAM prints its arguments, and `offer` (in zsh, Control-T)
// writes the candidates for the text in the file "line" into the file "offered".

constexpr const char* forBash = R"sh(
PROGRAM() {
    if [ "$1" = ---completion ]; then command PROGRAM "$@"; return; fi
    printf '<%s>' "$@"
    printf '\nDONE\n'
}
. <(command PROGRAM --generate-completion-script=bash)
offer() {  # words are cut as readline cuts them
    COMP_LINE="$(cat .shell-line)"
    COMP_POINT="${#COMP_LINE}"
    local line="${COMP_LINE//=/ = }"
    read -ra COMP_WORDS <<<"${line}"
    [[ "${line}" == *' ' ]] && COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    _PROGRAM PROGRAM "${COMP_WORDS[COMP_CWORD]}" ''
    eval "printf '%s\n' ${COMPREPLY[*]}" >.shell-offered
    echo DONE
}
echo DONE
)sh";

constexpr const char* forZsh = R"sh(
PROGRAM() {
    if [ "$1" = ---completion ]; then command PROGRAM "$@"; return; fi
    printf '<%s>' "$@"
    printf '\nDONE\n'
}
autoload -Uz compinit
compinit -u -d .shell-dump
bindkey -e
setopt no_beep
. <(command PROGRAM --generate-completion-script=zsh)
compadd() {
    if [[ ${(@)argv[1,(i)(-|--)]} != *-[OAD]* ]]; then
        local -a hits
        builtin compadd -O hits "$@"
        print -rl -- "${(@)hits}" >>$HOME/.shell-offered
    fi
    builtin compadd "$@"
}
offer() {
    BUFFER="$(<.shell-line)"
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

constexpr const char* forFish = R"sh(
function PROGRAM
    if test "$argv[1]" = ---completion
        command PROGRAM $argv
        return
    end
    printf '<%s>' $argv
    printf '\nDONE\n'
end
function fish_prompt
    echo '> '
end
command PROGRAM --generate-completion-script=fish | source
function offer
    complete -C (cat .shell-line) >.shell-offered
    echo DONE
end
echo DONE
)sh";

std::string setUp(const std::string& shell, const std::string& program) {
  std::string text = shell == "bash" ? forBash : shell == "zsh" ? forZsh : forFish;
  const std::string mark = "PROGRAM";
  for (std::size_t at = 0; (at = text.find(mark, at)) != text.npos; at += program.size())
    text.replace(at, mark.size(), program);
  return text;
}

std::vector<std::string> withoutConfiguration(const std::string& shell) {
  if (shell == "zsh") return {shell, "-f", "-i"};
  if (shell == "fish") return {shell, "--no-config", "-i"};
  return {shell, "--norc", "--noprofile", "-i"};
}

/// A candidate alone: without its description, the option's name and the suffix that the shell
/// adds.
std::string bare(std::string offer) {
  offer.erase(std::min(offer.find('\t'), offer.size()));
  if (offer.starts_with("--") && offer.find('=') != offer.npos)
    offer.erase(0, offer.ends_with('=') ? 0 : offer.find('=') + 1);
  while (offer.ends_with('=') || offer.ends_with('/')) offer.pop_back();
  return offer;
}

}  // namespace

bool CompletingShell::isInstalled(const std::string& shell) {
  return std::system(("command -v " + shell + " >/dev/null").c_str()) == 0;
}

CompletingShell::CompletingShell(const std::string& shell, const fs::path& program,
                                 const fs::path& home)
    : shell_(shell), home_(home) {
  const char* path = std::getenv("PATH");
  std::ofstream(home_ / ".shell-setup") << setUp(shell, program.filename());
  terminal_.emplace(withoutConfiguration(shell), home_,
                    Terminal::Environment{{"HOME", home_},
                                          {"PATH", program.parent_path().string() + ":" +
                                                       (path ? path : "/usr/bin:/bin")},
                                          {"TERM", "dumb"},
                                          {"LC_ALL", "C.UTF-8"}});
  terminal_->type(". ./.shell-setup\n");
  terminal_->readUntil("DONE\r\n");
}

CompletingShell::Texts CompletingShell::offered(const std::string& line) {
  std::ofstream(home_ / ".shell-offered");
  std::ofstream(home_ / ".shell-line") << line;
  terminal_->type(shell_ == "zsh" ? "\x14" : "offer\n");
  terminal_->readUntil("DONE\r\n");
  std::istringstream lines(contentOf(home_ / ".shell-offered"));
  Texts result;
  for (std::string text; std::getline(lines, text);)
    if (text = bare(text); !text.empty()) result.insert(text);
  return result;
}

std::string CompletingShell::entered(const std::string& line) {
  terminal_->type(line + "\t\n");
  std::string output = terminal_->readUntil("DONE\r\n");
  output.erase(output.rfind("\r\nDONE"));
  return output.substr(output.rfind("\r\n") + 2);
}

}  // namespace support

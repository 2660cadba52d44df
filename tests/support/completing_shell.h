#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "support/terminal.h"

namespace support {

/// An interactive shell in a terminal. It completes the command lines of a program with the
/// completion script that the program generates for it.
class CompletingShell {
 public:
  using Texts = std::set<std::string>;

  static bool isInstalled(const std::string& shell);

  /// `shell`: bash, zsh or fish. `home` is its HOME and working directory; the files exchanged with
  /// the shell lie there, named ".shell-...".
  CompletingShell(const std::string& shell, const std::filesystem::path& program,
                  const std::filesystem::path& home);

  /// The texts offered for the word at the end of the line, without quoting.
  Texts offered(const std::string& line);
  /// The arguments that the program receives when the line is completed and entered: "<list><x>".
  std::string entered(const std::string& line);

 private:
  std::string shell_;
  std::filesystem::path home_;
  std::optional<Terminal> terminal_;
};

}  // namespace support

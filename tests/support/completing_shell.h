#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "support/terminal.h"

namespace support {

/// A shell in a terminal, in which the lines of a program are completed by the script that the
/// program writes for it.
class CompletingShell {
 public:
  using Texts = std::set<std::string>;

  static bool isInstalled(const std::string& shell);

  /// `shell`: bash, zsh or fish. `home` is its home and the folder where it works; it takes some
  /// files for the talk with the shell, all named ".shell-...".
  CompletingShell(const std::string& shell, const std::filesystem::path& program,
                  const std::filesystem::path& home);

  /// The texts offered for the word at the end of the line, without quoting.
  Texts offered(const std::string& line);
  /// The arguments that the program would get when the line is completed and entered: "<list><x>".
  std::string entered(const std::string& line);

 private:
  std::string shell_;
  std::filesystem::path home_;
  std::optional<Terminal> terminal_;
};

}  // namespace support

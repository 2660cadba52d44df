#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace ArgumentParser {

/// What a shell asks the program while a line is being typed.
struct CompletionRequest {
  std::vector<std::string> words;  ///< from the program's name to the word at the cursor, which
                                   ///< is last and may be empty
  std::string value;               ///< what is typed of the value at the cursor: the last word, or
                                   ///< the part of it after "--name="
  std::string shell;               ///< "bash", "zsh" or "fish"; empty when the script did not say
  std::string shellVersion;
};

/// Gives the candidates; the shell drops those that do not continue the word at the cursor. The
/// variables that the command's arguments are bound to hold what the line gives before it. An
/// error that it throws means that there are none.
using CandidateFunction = std::function<std::vector<std::string>(const CompletionRequest&)>;

struct NoCompletion {};
struct CompletionList {
  std::vector<std::string> values;
};
struct CompletionFiles {
  std::vector<std::string> extensions;  ///< without dots; none means every file
};
struct CompletionDirectories {};
struct CompletionShellCommand {
  std::string command;  ///< run by the shell; one candidate a line
};
struct CompletionCustom {
  CandidateFunction candidates;  ///< run by this program, called back by the shell
};

/// How a shell completes the value of an argument.
using CompletionKind =
    std::variant<NoCompletion, CompletionList, CompletionFiles, CompletionDirectories,
                 CompletionShellCommand, CompletionCustom>;

}  // namespace ArgumentParser

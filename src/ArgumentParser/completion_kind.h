#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

namespace ArgumentParser {

/// A shell's question for the candidates at the cursor of the line that is being typed.
struct CompletionRequest {
  std::vector<std::string> words;  ///< from the program's name to the word at the cursor, which
                                   ///< is last and may be empty
  std::string value;               ///< the part of the value that is typed already: the last word,
                                   ///< or what follows "--name=" in it
  std::string shell;               ///< "bash", "zsh" or "fish"; empty if not known
  std::string shellVersion;        ///< as the shell reports it; empty if not known
};

/// Returns the candidates; the shell drops those that do not match the word at the cursor. When it
/// is called, the command's bound variables hold the values given before the cursor. If it throws,
/// no candidates are offered.
using CandidateFunction = std::function<std::vector<std::string>(const CompletionRequest&)>;

/// The shell offers no candidates.
struct NoCompletion {};
/// Fixed candidates, written into the completion script.
struct CompletionList {
  std::vector<std::string> values;
};
/// Names of files.
struct CompletionFiles {
  std::vector<std::string> extensions;  ///< without dots; empty means every file
};
/// Names of directories.
struct CompletionDirectories {};
/// Candidates that a shell command prints.
struct CompletionShellCommand {
  std::string command;  ///< run by the shell; prints one candidate per line
};
/// Candidates that the program computes when the shell calls it back.
struct CompletionCustom {
  CandidateFunction candidates;
};

/// How a shell completes the value of an argument.
using CompletionKind =
    std::variant<NoCompletion, CompletionList, CompletionFiles, CompletionDirectories,
                 CompletionShellCommand, CompletionCustom>;

}  // namespace ArgumentParser

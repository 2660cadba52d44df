#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ArgumentParser/command_line.h"

/// The command tree in the form that the writers of completion scripts need.
namespace ArgumentParser {

struct CompletionArgument {
  ArgumentDefinition definition;  ///< to be read only: its command is gone
  std::string identifier;         ///< in a request to the program
  /// Its names as written; none for a positional.
  std::vector<std::string> names() const;
};

struct CompletionCommand;

/// An argument with the command that has declared it.
struct OwnedArgument {
  const CompletionCommand* owner;
  const CompletionArgument* argument;
};

struct CompletionCommand {
  std::vector<std::string> path;   ///< of names, from the program's
  std::vector<std::string> names;  ///< its name and its aliases
  std::string abstract;
  std::vector<CompletionArgument> arguments;  ///< with --version and --help
  std::vector<CompletionCommand> children;    ///< without hidden ones
  std::optional<std::size_t> defaultIndex;    ///< among the children

  /// "_tool_tags_add", made of characters that functions' names may have.
  std::string functionName() const;
  /// "tags add": the path without the program.
  std::string subcommandPath() const;
  const CompletionCommand* defaultChild() const;
  std::vector<const CompletionArgument*> positionals() const;
  /// The visible flags and options that may follow its name, those of the default child
  /// included.
  std::vector<OwnedArgument> options() const;
};

CompletionCommand completionTree(const CommandType& root);

/// Puts values in the place of marks such as "@NAME@".
std::string filled(std::string_view pattern,
                   std::initializer_list<std::pair<std::string_view, std::string>> values);

std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// The texts of a function, one for each.
template <class Function>
std::vector<std::string> each(const std::vector<std::string>& texts, Function function) {
  std::vector<std::string> results;
  for (const std::string& text : texts) results.push_back(function(text));
  return results;
}

}  // namespace ArgumentParser

#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ArgumentParser/command_line.h"

/// The command tree in the form that the generators of completion scripts need.
namespace ArgumentParser {

/// One argument of a command in the tree.
struct CompletionArgument {
  ArgumentDefinition definition;  ///< `update` must not be called: the bound variable is gone
  std::string identifier;         ///< see completionIdentifier
  /// Its names with their dashes; empty for a positional.
  std::vector<std::string> names() const;
};

struct CompletionCommand;

/// An argument and the command that declares it. Refers into the tree.
struct OwnedArgument {
  const CompletionCommand* owner;
  const CompletionArgument* argument;
};

/// One command of the tree, with its visible subcommands.
struct CompletionCommand {
  std::vector<std::string> path;   ///< the names from the program's to its own
  std::vector<std::string> names;  ///< its name, then its aliases
  std::string abstract;
  std::vector<CompletionArgument> arguments;  ///< including --version and --help
  std::vector<CompletionCommand> children;    ///< without hidden ones
  std::optional<std::size_t> defaultIndex;    ///< of the default subcommand in `children`

  /// "_tool_tags_add": the path as a name that shells accept for a function.
  std::string functionName() const;
  /// "tags add": the path without the program's name.
  std::string subcommandPath() const;
  const CompletionCommand* defaultChild() const;
  std::vector<const CompletionArgument*> positionals() const;
  /// The visible flags and options that may follow its name, including those of the default
  /// subcommand.
  std::vector<OwnedArgument> options() const;
};

CompletionCommand completionTree(const CommandType& root);

/// Replaces each placeholder such as "@NAME@" in the pattern with its value.
std::string filled(std::string_view pattern,
                   std::initializer_list<std::pair<std::string_view, std::string>> values);

std::string joined(const std::vector<std::string>& texts, std::string_view separator);

/// The result of `function` for each text.
template <class Function>
std::vector<std::string> each(const std::vector<std::string>& texts, Function function) {
  std::vector<std::string> results;
  for (const std::string& text : texts) results.push_back(function(text));
  return results;
}

}  // namespace ArgumentParser

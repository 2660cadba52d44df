#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <typeindex>

#include "ArgumentParser/command_line.h"

/// What follows from the place of a command in the tree.
namespace ArgumentParser {

/// Ends the process if a command of the tree contradicts itself.
void checkTree(const CommandType& root);

/// The children of the last command of the stack: its subcommands and, of a root, `help`.
std::vector<CommandType> children(const CommandStack& stack);

/// The flags that follow a command's own arguments in help: --version if a command of the stack has
/// one, and help.
std::vector<ArgumentDefinition> builtInFlags(const CommandStack& stack);

/// The way to the first command of this type; the root alone if there is none.
CommandStack stackTo(const CommandType& root, std::type_index type);

std::string commandPath(const CommandStack& stack);  ///< "tool tags add"

/// Of the deepest command that declares its own, else -h and --help.
Names helpNames(const CommandStack& stack);

/// Of the deepest command that has one; empty for none.
std::string version(const CommandStack& stack);

/// A new command of a type, and its arguments, which are bound to it.
struct DeclaredCommand {
  explicit DeclaredCommand(const CommandType& type) : DeclaredCommand(type.make()) {}
  explicit DeclaredCommand(std::unique_ptr<ParsableCommand> made);
  void validate();

  std::unique_ptr<ParsableCommand> command;
  ArgumentSet arguments;
};

}  // namespace ArgumentParser

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <typeindex>

#include "ArgumentParser/command_line.h"

/// Properties of a command that depend on its position in the command tree.
namespace ArgumentParser {

/// Aborts the process, with a message, if the declarations of a command are inconsistent.
void checkTree(const CommandType& root);

/// The subcommands of the last command of the stack; those of the root include `help`.
std::vector<CommandType> children(const CommandStack& stack);

/// The flags that help lists after the command's own arguments: --version, if a command of the
/// stack has a version, and the help flag.
std::vector<ArgumentDefinition> builtInFlags(const CommandStack& stack);

/// The path to the first command of this type; the root alone if there is none.
CommandStack stackTo(const CommandType& root, std::type_index type);

std::string commandPath(const CommandStack& stack);  ///< "tool tags add"

/// The names of the help flag: those of the deepest command that declares some, else -h and --help.
Names helpNames(const CommandStack& stack);

/// The version of the deepest command that has one; empty if none has.
std::string version(const CommandStack& stack);

/// A new command and the set of its arguments, which are bound to the command's members.
struct DeclaredCommand {
  explicit DeclaredCommand(const CommandType& type) : DeclaredCommand(type.make()) {}
  explicit DeclaredCommand(std::unique_ptr<ParsableCommand> made);
  /// Validates the argument groups and the command. Throws what they throw.
  void validate();

  std::unique_ptr<ParsableCommand> command;
  ArgumentSet arguments;
};

}  // namespace ArgumentParser

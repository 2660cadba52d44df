#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// What a program's entry calls: parse, run, and print what was thrown. In all of them `root` is
/// the command that the program itself is. `columns` is the width of help pages; absent means
/// that of the terminal.
///
///   try {
///     parseAsRoot(root, arguments)->run();
///   } catch (...) {
///     exitWithError(root, std::current_exception());
///   }
namespace ArgumentParser {

/// The command that a line names, with its values. `arguments` are without the program's name.
/// Throws CommandError, also for a request for help.
std::unique_ptr<ParsableCommand> parseAsRoot(const CommandType& root,
                                             const std::vector<std::string>& arguments);

/// The text of an error alone, without "Error: " and usage; of a request, what was requested.
std::string message(const CommandType& root, const std::exception_ptr& error,
                    std::optional<int> columns = {});

/// The whole text of an error, without a line break at its end.
std::string fullMessage(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns = {});

/// 0 for requests, 64 for a line that cannot be taken, 1 for errors that are not of this library.
int exitCode(const CommandType& root, const std::exception_ptr& error);

/// Prints the whole text, a request to standard output and a failure to standard error, and ends
/// the process.
[[noreturn]] void exitWithError(const CommandType& root, const std::exception_ptr& error);

/// A way down the tree, from the root to a command.
using CommandStack = std::vector<CommandType>;

/// The child that answers to a name or an alias. The `help` command is no child.
std::optional<CommandType> subcommand(const CommandType& command, std::string_view name);

/// The help page of the last command of the stack. Ends with a line break unless the command has
/// subcommands.
std::string helpMessage(const CommandStack& stack, std::optional<int> columns = {});

}  // namespace ArgumentParser

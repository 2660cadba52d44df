#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ArgumentParser/parsable_command.h"

/// The entry points of the library: parse a command line, run the command, and print what was
/// thrown. `root` is always the program's own command. `columns` is the width of help pages; absent
/// means the width of the terminal.
///
///   try {
///     parseAsRoot(root, arguments)->run();
///   } catch (...) {
///     exitWithError(root, std::current_exception());
///   }
namespace ArgumentParser {

/// Parses a command line into the command that it names, with its values assigned. `arguments`
/// excludes the program's name. Throws CommandError, also when the line asks for help.
std::unique_ptr<ParsableCommand> parseAsRoot(const CommandType& root,
                                             const std::vector<std::string>& arguments);

/// The text of an error, without "Error: " and usage. For a request, such as help, the text that
/// was requested.
std::string message(const CommandType& root, const std::exception_ptr& error,
                    std::optional<int> columns = {});

/// The text of an error as it is printed, with usage, without a final line break.
std::string fullMessage(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns = {});

/// 0 for requests, 64 for an invalid command line (EX_USAGE of sysexits.h), the code of an
/// ExitCode, and 1 for any other error.
int exitCode(const CommandType& root, const std::exception_ptr& error);

/// Prints the full message, to standard output for a request and to standard error for a failure,
/// and ends the process with the error's exit code.
[[noreturn]] void exitWithError(const CommandType& root, const std::exception_ptr& error);

/// A path in the command tree, from the root to a command; never empty.
using CommandStack = std::vector<CommandType>;

/// The subcommand with this name or alias, absent if there is none. Does not find `help`.
std::optional<CommandType> subcommand(const CommandType& command, std::string_view name);

/// The help page of the last command of the stack. It ends with a line break unless the command has
/// subcommands.
std::string helpMessage(const CommandStack& stack, std::optional<int> columns = {});

}  // namespace ArgumentParser

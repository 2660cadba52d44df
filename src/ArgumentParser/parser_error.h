#pragma once

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "ArgumentParser/command_line.h"
#include "ArgumentParser/completion_shell.h"
#include "ArgumentParser/name.h"

/// The reasons why parsing a line yields no command to run: requests, such as help, and errors.
/// `definition` is always an index into the arguments of the last command of the stack.
namespace ArgumentParser {

/// The line asks for a help page: that of the last command of the stack.
struct HelpRequested {};
/// `--generate-completion-script`
struct CompletionScriptRequested {
  CompletionShell shell;
};
/// The answer to a completion request of a shell.
struct CompletionScriptCustomResponse {
  std::string text;  ///< one candidate per line
};
/// `--generate-completion-script` for a shell that has no script.
struct UnsupportedShell {
  std::optional<std::string> name;  ///< absent if the user's shell is not known
};
/// No command of the stack has this option.
struct UnknownOption {
  Name name;
};
/// The token is malformed: `---x`, `--=x`.
struct InvalidOption {
  std::string text;
};
/// A short option that is not a letter or digit: `-?`.
struct NonAlphanumericShortOption {
  std::string character;
  bool isInGroup;  ///< after a letter: -n?
};
/// The option needs a value, and none follows.
struct MissingValueForOption {
  Name name;
};
/// In `-ab` no option "ab" exists, and the one of "a" and "b" that needs a value has none.
struct MissingValueOrUnknownCompositeOption {
  Name shortName;
  Name composite;
};
/// A flag with a value: `--force=x`.
struct UnexpectedValueForOption {
  Name name;
  std::string value;
};
/// More values than the command has positional arguments.
struct UnexpectedExtraValues {
  std::vector<std::string> values;
};
/// A required argument is missing.
struct NoValue {
  std::size_t definition;
};
/// The text is not a value of the argument's type.
struct UnableToParseValue {
  std::optional<Name> name;  ///< as typed; absent for a positional
  std::string value;
  std::size_t definition;
  std::optional<std::string> reason;  ///< the message of what parsing the value threw, if it threw
};
/// `validate` threw this exception.
struct UserValidationError {
  std::exception_ptr error;
};
/// The line is empty, although the command requires an argument.
struct NoArguments {
  std::exception_ptr error;  ///< the CommandError with the NoValue
};
/// `--version`
struct VersionRequested {};
/// `--experimental-dump-help`
struct DumpHelpRequested {};
/// The command does not implement what was asked for.
struct NotImplemented {};
/// The parser reached a state that it does not expect.
struct InvalidState {};
/// The command needs a subcommand, and the line names none.
struct MissingSubcommand {};

/// Any of them.
using ParserError =
    std::variant<HelpRequested, CompletionScriptRequested, CompletionScriptCustomResponse,
                 UnsupportedShell, UnknownOption, InvalidOption, NonAlphanumericShortOption,
                 MissingValueForOption, MissingValueOrUnknownCompositeOption,
                 UnexpectedValueForOption, UnexpectedExtraValues, NoValue, UnableToParseValue,
                 UserValidationError, NoArguments, VersionRequested, DumpHelpRequested,
                 NotImplemented, InvalidState, MissingSubcommand>;

/// What `parseAsRoot` throws: the error, and the path of commands that parsing had reached.
class CommandError : public std::exception {
 public:
  CommandError(ParserError error, CommandStack stack)
      : error_(std::move(error)), stack_(std::move(stack)) {}
  const ParserError& error() const { return error_; }
  const CommandStack& stack() const { return stack_; }
  const char* what() const noexcept override { return "the command line ends without a command"; }

 private:
  ParserError error_;
  CommandStack stack_;
};

}  // namespace ArgumentParser

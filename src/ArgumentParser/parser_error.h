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

/// Every way in which a line ends without a command to run: what was asked for instead, and what
/// was wrong. `definition` is an index into the arguments of the last command reached.
namespace ArgumentParser {

struct HelpRequested {};
struct CompletionScriptRequested {
  CompletionShell shell;
};
struct CompletionScriptCustomResponse {
  std::string text;  ///< one candidate a line
};
struct UnsupportedShell {
  std::optional<std::string> name;  ///< absent when none is known
};
struct UnknownOption {
  Name name;
};
struct InvalidOption {
  std::string text;
};
struct NonAlphanumericShortOption {
  std::string character;
  bool isInGroup;  ///< beside a letter: -n?
};
struct MissingValueForOption {
  Name name;
};
/// `-ab` where neither an option "ab" exists nor a value for the one of "a" and "b" that needs it.
struct MissingValueOrUnknownCompositeOption {
  Name shortName;
  Name composite;
};
struct UnexpectedValueForOption {
  Name name;
  std::string value;
};
struct UnexpectedExtraValues {
  std::vector<std::string> values;
};
struct NoValue {
  std::size_t definition;
};
struct UnableToParseValue {
  std::optional<Name> name;  ///< as typed; absent for a positional
  std::string value;
  std::size_t definition;
  std::optional<std::string> reason;  ///< of an error that the value's type has thrown
};
struct UserValidationError {
  std::exception_ptr error;
};
/// The line is empty, and that is what is wrong.
struct NoArguments {
  std::exception_ptr error;
};
struct VersionRequested {};
struct DumpHelpRequested {};
struct NotImplemented {};
struct InvalidState {};
struct MissingSubcommand {};

using ParserError =
    std::variant<HelpRequested, CompletionScriptRequested, CompletionScriptCustomResponse,
                 UnsupportedShell, UnknownOption, InvalidOption, NonAlphanumericShortOption,
                 MissingValueForOption, MissingValueOrUnknownCompositeOption,
                 UnexpectedValueForOption, UnexpectedExtraValues, NoValue, UnableToParseValue,
                 UserValidationError, NoArguments, VersionRequested, DumpHelpRequested,
                 NotImplemented, InvalidState, MissingSubcommand>;

/// What `parseAsRoot` throws: the error, and the commands reached.
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

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <variant>

#include "ArgumentParser/command_line.h"

namespace ArgumentParser {

/// What is printed for an exception, and the exit code.
struct MessageInfo {
  /// The answer to a request (help, version, completions), printed to standard output.
  struct Help {
    std::string text;
  };
  /// An invalid command line.
  struct Validation {
    std::string message;
    std::string usage;  ///< with "Usage: " and the pointer to help; may be empty
    std::string help;   ///< of the argument at fault; may be empty
  };
  /// Any other error.
  struct Other {
    std::string message;
    int exitCode;
  };

  std::variant<Help, Validation, Other> content;

  std::string message() const;   ///< without "Error: ", usage and help
  std::string fullText() const;  ///< all that is printed, without a final line break
  int exitCode() const;
  bool isHelp() const { return std::holds_alternative<Help>(content); }
};

/// Describes any exception that parsing or running a command threw. `columns`: the width of help
/// pages; absent means the width of the terminal.
MessageInfo messageInfo(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns);

}  // namespace ArgumentParser

#pragma once

#include <exception>
#include <optional>
#include <string>
#include <variant>

#include "ArgumentParser/command_line.h"

namespace ArgumentParser {

/// What is printed of an error, and how the process ends.
struct MessageInfo {
  /// A request, answered on standard output.
  struct Help {
    std::string text;
  };
  /// A line that cannot be taken.
  struct Validation {
    std::string message;
    std::string usage;
    std::string help;
  };
  struct Other {
    std::string message;
    int exitCode;
  };

  std::variant<Help, Validation, Other> content;

  std::string message() const;
  std::string fullText() const;
  int exitCode() const;
  bool isHelp() const { return std::holds_alternative<Help>(content); }
};

/// `columns`: absent means those of the terminal.
MessageInfo messageInfo(const CommandType& root, const std::exception_ptr& error,
                        std::optional<int> columns);

}  // namespace ArgumentParser

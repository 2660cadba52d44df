#pragma once

#include <exception>
#include <optional>
#include <string>
#include <typeindex>
#include <utility>
#include <variant>

/// The exceptions that a command may throw from `validate` or `run`. Any other exception ends the
/// program too, with its what() as the message and exit code 1.
namespace ArgumentParser {

class ParsableCommand;

/// The values that the user gave are invalid. Printed with the usage line; exit code 64.
class ValidationError : public std::exception {
 public:
  explicit ValidationError(std::string message) : message_(std::move(message)) {}
  const std::string& message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// Ends the program successfully: prints to standard output, exit code 0.
class CleanExit : public std::exception {
 public:
  /// Prints the help page of a command of the tree.
  static CleanExit helpRequest(const ParsableCommand& command);
  static CleanExit message(std::string text) { return CleanExit(std::move(text)); }

  const std::variant<std::type_index, std::string>& request() const { return request_; }
  const char* what() const noexcept override { return "clean exit"; }

 private:
  explicit CleanExit(std::variant<std::type_index, std::string> request)
      : request_(std::move(request)) {}

  std::variant<std::type_index, std::string> request_;
};

/// Ends the program with this exit code and prints nothing.
class ExitCode : public std::exception {
 public:
  static constexpr int success = 0;
  static constexpr int failure = 1;
  static constexpr int validationFailure = 64;

  explicit ExitCode(int code) : code_(code) {}
  int code() const { return code_; }
  const char* what() const noexcept override { return "exit code"; }

 private:
  int code_;
};

}  // namespace ArgumentParser

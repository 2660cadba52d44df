#pragma once

#include <exception>
#include <string>
#include <utility>

namespace tavi {

/// An error whose message may quote arbitrary text, NUL bytes included: `message()` is the whole
/// message, while `what()` ends at the first NUL.
class Failure : public std::exception {
 public:
  explicit Failure(std::string message) : message_(std::move(message)) {}
  const std::string& message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// The message for any exception as the command line and the MCP server show it: complete, on one
/// line and with control characters escaped. std::bad_alloc has a readable sentence.
std::string failureMessage(const std::exception& error);

}  // namespace tavi

#pragma once

#include <stdexcept>
#include <string>

namespace tavi {

/// The command line's own usage error: what the parser cannot check. what() is the message.
class TaviCLIError : public std::runtime_error {
 public:
  static TaviCLIError usage(const std::string& message) { return TaviCLIError(message); }

 private:
  using std::runtime_error::runtime_error;
};

/// A failure that a command words itself, with its machine code; ends the run like a store error.
class CommandFailure : public std::runtime_error {
 public:
  CommandFailure(std::string code, const std::string& message)
      : std::runtime_error(message), code_(std::move(code)) {}
  const std::string& code() const { return code_; }

 private:
  std::string code_;
};

}  // namespace tavi

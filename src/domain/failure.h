#pragma once

#include <exception>
#include <string>
#include <utility>

namespace tavi {

/// An error whose message may quote any text. `what()` ends at the first NUL of it; `message()`
/// does not.
class Failure : public std::exception {
 public:
  explicit Failure(std::string message) : message_(std::move(message)) {}
  const std::string& message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// What either face tells the user of an error, ours or not: its whole message, on one line and
/// without control characters. Of std::bad_alloc, a sentence.
std::string failureMessage(const std::exception& error);

}  // namespace tavi

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

}  // namespace tavi

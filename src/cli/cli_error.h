#pragma once

#include <string>
#include <utility>

#include "domain/failure.h"

namespace tavi {

/// The command line's own usage error: what the parser cannot check.
class TaviCLIError : public Failure {
 public:
  static TaviCLIError usage(std::string message) { return TaviCLIError(std::move(message)); }

 private:
  using Failure::Failure;
};

/// A failure that a command words itself, with its machine code; ends the run like a store error.
class CommandFailure : public Failure {
 public:
  CommandFailure(std::string code, std::string message)
      : Failure(std::move(message)), code_(std::move(code)) {}
  const std::string& code() const { return code_; }

 private:
  std::string code_;
};

}  // namespace tavi

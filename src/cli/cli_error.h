#pragma once

#include <string>
#include <utility>

#include "domain/failure.h"

namespace tavi {

/// A usage error that the parser cannot detect. Exit code 64.
class TaviCLIError : public Failure {
 public:
  static TaviCLIError usage(std::string message) { return TaviCLIError(std::move(message)); }

 private:
  using Failure::Failure;
};

/// An error with its own machine-readable code and message. Reported like a NoteStoreError: exit
/// code 1.
class CommandFailure : public Failure {
 public:
  CommandFailure(std::string code, std::string message)
      : Failure(std::move(message)), code_(std::move(code)) {}
  const std::string& code() const { return code_; }

 private:
  std::string code_;
};

}  // namespace tavi

#pragma once

#include <stdexcept>
#include <string>

namespace tavimodel {

inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// Codes for a save that conflicts with another program's change.
enum CocoaErrorCode {
  managedObjectMergeError = 133020,            ///< a row that was read has been deleted
  persistentStoreSaveConflictsError = 134050,  ///< a row that was read has changed since
};

/// An error with a domain and a code, thrown by `ManagedObjectContext::save`.
class DomainError : public std::runtime_error {
 public:
  DomainError(std::string domain, int code, const std::string& message)
      : std::runtime_error(message), domain_(std::move(domain)), code_(code) {}
  const std::string& domain() const { return domain_; }
  int code() const { return code_; }

 private:
  std::string domain_;
  int code_;
};

}  // namespace tavimodel

#pragma once

#include <stdexcept>
#include <string>

namespace tavimodel {

inline constexpr const char* NSCocoaErrorDomain = "NSCocoaErrorDomain";

/// Codes of a save that met somebody else's change.
enum CocoaErrorCode {
  managedObjectMergeError = 133020,            ///< a row that was read is gone
  persistentStoreSaveConflictsError = 134050,  ///< a row that was read has changed since
};

/// An error told by domain and code, as a caller of `ManagedObjectContext::save` sees it.
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

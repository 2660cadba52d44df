#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "mcp/build_identity.h"

namespace tavi::mcp {

/// Why an executable has no fingerprint. what() is a sentence with the path.
class BinaryFingerprintError : public std::exception {
 public:
  enum class Case { statFailed, readFailed, malformedMachO, executablePathUnavailable };

  static BinaryFingerprintError statFailed(std::string_view path, std::string_view underlying);
  static BinaryFingerprintError readFailed(std::string_view path, std::string_view underlying);
  static BinaryFingerprintError malformedMachO(std::string_view path);
  static BinaryFingerprintError executablePathUnavailable();

  Case kind() const { return case_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  BinaryFingerprintError(Case kind, std::string message)
      : case_(kind), message_(std::move(message)) {}

  Case case_;
  std::string message_;
};

/// Which build of a program is on disk.
struct BinaryFingerprint {
  std::string path;  ///< symbolic links resolved
  std::chrono::sys_time<std::chrono::nanoseconds> mtime;
  std::int64_t size = 0;
  BuildUUID uuid{};

  /// Reads the file's attributes and a few of its headers. Throws BinaryFingerprintError.
  static BinaryFingerprint ofFile(const std::string& path);

  /// Of the file that would run if the program were started again. The path that it was started by
  /// is asked for once, at the first call; its links are resolved at every call.
  static BinaryFingerprint current();
};

}  // namespace tavi::mcp

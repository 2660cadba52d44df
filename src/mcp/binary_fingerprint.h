#pragma once

#include <chrono>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>

#include "mcp/build_identity.h"

namespace tavi::mcp {

/// The fingerprint of an executable could not be read. what() is a sentence that names the path.
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

/// Identifies the build of a program that a file on disk contains.
struct BinaryFingerprint {
  std::string path;  ///< symbolic links resolved
  std::chrono::sys_time<std::chrono::nanoseconds> mtime;
  std::int64_t size = 0;  ///< bytes
  BuildUUID uuid{};

  /// Reads the file's attributes and a few of its headers. Throws BinaryFingerprintError.
  static BinaryFingerprint ofFile(const std::string& path);

  /// The fingerprint of the file that a restart of this program would run. The path by which the
  /// program was started is determined on the first call; its symbolic links are resolved on each
  /// call. Throws BinaryFingerprintError.
  static BinaryFingerprint current();
};

}  // namespace tavi::mcp

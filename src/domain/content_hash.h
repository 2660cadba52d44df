#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// A token with which a client later shows which version of a note's text it has read: the first 7
/// lower-case hexadecimal digits of the SHA-256 (FIPS 180-4) of the stored text's bytes.
struct ContentHash {
  static std::string of(std::string_view text);
  /// The hash from the text's SHA-256, given as at least 7 lower-case hexadecimal digits.
  static std::string ofDigest(std::string_view sha256);
};

}  // namespace tavi

#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// The token by which a reader later proves that a note's text has not changed: the first 7
/// lower-case hexadecimal digits of the SHA-256 (FIPS 180-4) of the text's bytes as stored.
struct ContentHash {
  static std::string of(std::string_view text);
  /// The same from the text's SHA-256 in lower-case hexadecimal digits, or a head of 7 or more.
  static std::string ofDigest(std::string_view sha256);
};

}  // namespace tavi

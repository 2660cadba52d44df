#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// The token by which a reader later proves that a note's text has not changed: the first 7
/// lower-case hexadecimal digits of the SHA-256 (FIPS 180-4) of the text's bytes as stored.
struct ContentHash {
  static std::string of(std::string_view text);
};

}  // namespace tavi

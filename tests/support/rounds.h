#pragma once

#include <cstdlib>

namespace support {

/// How often a random test tries: TAVI_RANDOM_ROUNDS, or else `usual`. The sanitizers, which take
/// some ten times as long, get a third of that: the release build tries the rest.
inline int rounds(int usual) {
  const char* wanted = std::getenv("TAVI_RANDOM_ROUNDS");
  if (wanted != nullptr) return std::atoi(wanted);
#ifdef TAVI_SANITIZED
  return usual / 3;
#else
  return usual;
#endif
}

}  // namespace support

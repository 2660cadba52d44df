#pragma once

#include <cstdlib>

namespace support {

/// How often a random test tries: `usual`, or TAVI_RANDOM_ROUNDS for a longer run.
inline int rounds(int usual) {
  const char* wanted = std::getenv("TAVI_RANDOM_ROUNDS");
  return wanted != nullptr ? std::atoi(wanted) : usual;
}

}  // namespace support

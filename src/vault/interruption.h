#pragma once

namespace tavi::vault {

/// While one lives, the first SIGINT or SIGTERM only asks for an end, so that what is under way is
/// finished; the second ends the process.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  static bool isRequested();
};

}  // namespace tavi::vault

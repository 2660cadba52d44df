#pragma once

namespace tavi::vault {

/// While an object exists, the first SIGINT or SIGTERM only sets a flag, so that the program can
/// finish its current step; the second one ends the process.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// Whether a signal has arrived.
  static bool isRequested();
};

}  // namespace tavi::vault

#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace tavi::vault {

/// A line on a terminal's standard error that says how far a run is, how fast, and how much longer
/// it will take; nothing where standard error is no terminal. It goes with the object.
class Progress {
 public:
  /// `what`: "files".
  Progress(std::size_t total, std::string what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// One more is done.
  void step();

 private:
  using Clock = std::chrono::steady_clock;
  void show(Clock::time_point now);

  std::size_t total_, done_ = 0;
  std::string what_;
  bool isShown_;
  Clock::time_point begin_, last_;
};

}  // namespace tavi::vault

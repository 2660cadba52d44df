#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace tavi::vault {

/// A progress line on standard error, if that is a terminal: steps done, speed and remaining time.
/// The destructor erases the line.
class Progress {
 public:
  /// `total`: the number of steps. `what`: what a step handles, "files".
  Progress(std::size_t total, std::string what);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Counts one step. Redraws the line at most every 100 ms.
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

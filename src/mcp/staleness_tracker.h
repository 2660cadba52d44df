#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

#include "mcp/binary_fingerprint.h"

namespace tavi::mcp {

/// The warning to a client after the executable on disk was replaced.
inline constexpr std::string_view kStaleWarning =
    "[tavicli] On-disk tavicli is newer than the running build. Tool results reflect the previous "
    "code. Restarting the MCP server, or the AI client, switches to the new version.";

/// Detects that the executable was replaced or removed while the server runs. Checks the disk only
/// on request, at most once per `debounce`.
class StalenessTracker {
 public:
  using Clock = std::chrono::steady_clock;
  using Provider = std::function<BinaryFingerprint()>;  ///< throws if there is no fingerprint

  /// `baseline`: the build that runs; if absent, the tracker never reports anything.
  StalenessTracker(std::optional<BinaryFingerprint> baseline, Provider provider,
                   Clock::duration debounce = std::chrono::seconds(2));

  /// True exactly once: on the first check that finds another build or no file.
  bool checkForStaleness(Clock::time_point now);

  /// Whether a check has returned true.
  bool staleFlag() const { return staleFlag_; }

 private:
  bool sameBuildOnDisk() const;

  std::optional<BinaryFingerprint> baseline_;
  Provider provider_;
  Clock::duration debounce_;
  std::optional<Clock::time_point> lastChecked_;
  bool staleFlag_ = false;
};

}  // namespace tavi::mcp

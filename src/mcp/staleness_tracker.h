#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

#include "mcp/binary_fingerprint.h"

namespace tavi::mcp {

/// The warning to a client once the executable on disk is no longer the build that runs.
inline constexpr std::string_view kStaleWarning =
    "[tavicli] On-disk tavicli is newer than the running build. Tool results reflect the previous "
    "code. Restarting the MCP server, or the AI client, switches to the new version.";

/// Notices that the executable has been replaced or removed while the server runs. Looks at the
/// disk only when asked, and then at most once in `debounce`.
class StalenessTracker {
 public:
  using Clock = std::chrono::steady_clock;
  using Provider = std::function<BinaryFingerprint()>;  ///< throws when there is none

  /// Without a baseline the tracker is off and never reports anything.
  StalenessTracker(std::optional<BinaryFingerprint> baseline, Provider provider,
                   Clock::duration debounce = std::chrono::seconds(2));

  /// True exactly once: on the check that first finds another build, or none.
  bool checkForStaleness(Clock::time_point now);

  /// Set by that check, and never cleared.
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

#include "mcp/staleness_tracker.h"

namespace tavi::mcp {

StalenessTracker::StalenessTracker(std::optional<BinaryFingerprint> baseline, Provider provider,
                                   Clock::duration debounce)
    : baseline_(std::move(baseline)), provider_(std::move(provider)), debounce_(debounce) {}

bool StalenessTracker::checkForStaleness(Clock::time_point now) {
  if (staleFlag_ || !baseline_) return false;
  if (lastChecked_ && now - *lastChecked_ < debounce_) return false;
  lastChecked_ = now;
  staleFlag_ = !sameBuildOnDisk();
  return staleFlag_;
}

/// A file with the modification time and size of the baseline counts as the same build.
bool StalenessTracker::sameBuildOnDisk() const try {
  const BinaryFingerprint onDisk = provider_();
  if (onDisk.mtime == baseline_->mtime && onDisk.size == baseline_->size) return true;
  return onDisk.uuid == baseline_->uuid;
} catch (const std::exception&) {
  return false;
}

}  // namespace tavi::mcp

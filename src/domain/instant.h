#pragma once

#include <compare>
#include <string>

namespace tavi {

/// A point in time in seconds since 1970-01-01 UTC, with fractions. Whole seconds are exact.
struct Instant {
  double seconds = 0;
  auto operator<=>(const Instant&) const = default;

  /// 0001-01-01 00:00:00 UTC, which stands for an unknown date.
  static constexpr Instant distantPast() { return {-62135596800.0}; }
};

/// Formats as ISO 8601 in UTC, rounded down to whole seconds: "2026-01-31T08:05:09Z". An instant
/// outside the years 1 to 9999 becomes their first or last second, and NaN the first.
std::string formatISO8601(Instant instant);

}  // namespace tavi

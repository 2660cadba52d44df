#pragma once

#include <compare>
#include <string>

namespace tavi {

/// A point in time: seconds since 1970-01-01 UTC, with fractions. Whole seconds are exact.
struct Instant {
  double seconds = 0;
  auto operator<=>(const Instant&) const = default;

  /// 0001-01-01 00:00:00 UTC: what stands for a date that is not known.
  static constexpr Instant distantPast() { return {-62135596800.0}; }
};

/// ISO 8601 in UTC, whole seconds (fractions cut off towards the past): "2026-01-31T08:05:09Z".
/// What lies outside the years 1 to 9999 is written as the first or the last second of them, and
/// a value that is no number as the first.
std::string formatISO8601(Instant instant);

}  // namespace tavi

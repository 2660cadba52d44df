#pragma once

#include <optional>
#include <string_view>

namespace tavimodel {

/// Midnight, local time, at the start of the day that lies `days` after the day of `now` (negative:
/// before it). Seconds since 1970-01-01 UTC. Days of 23 and 25 hours are counted as days.
double startOfDay(double now, int days);

/// The same for a date written YYYY-MM-DD; nothing when there is no such day.
std::optional<double> startOfDate(std::string_view date, int days);

}  // namespace tavimodel

#pragma once

#include <optional>
#include <string_view>

namespace tavimodel {

/// The start, in local time, of the day that is `days` after the day of `now` (negative: before
/// it). All times are in seconds since 1970-01-01 UTC. A day may have 23 or 25 hours.
double startOfDay(double now, int days);

/// Like the above, for a date written YYYY-MM-DD; absent if the calendar has no such day.
std::optional<double> startOfDate(std::string_view date, int days);

}  // namespace tavimodel

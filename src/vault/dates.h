#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Dates as files write them, and seconds since 1970-01-01 UTC.
namespace tavi::vault {

/// ISO 8601 and YAML's timestamps: "2026-01-31", "2026-01-31 08:05",
/// "2026-01-31T08:05:09.25+01:00", also with slashes; or seconds, or milliseconds, since 1970.
/// Without a zone it is local time. Absent for anything else.
std::optional<double> readDate(std::string_view text);

/// ISO 8601 in UTC with as many digits of the second as bring the very same number back.
std::string writeDate(double seconds);

}  // namespace tavi::vault

#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Converts between written dates and seconds since 1970-01-01 UTC.
namespace tavi::vault {

/// Parses an ISO 8601 date or a YAML timestamp: "2026-01-31", "2026-01-31 08:05",
/// "2026-01-31T08:05:09.25+01:00", also with slashes or dots; or seconds or milliseconds since
/// 1970. A date without a time zone is local time. Absent for other texts.
std::optional<double> readDate(std::string_view text);

/// Formats as ISO 8601 in UTC, with as many fractional digits as readDate needs to return exactly
/// the same number. Clamps to the years 1 to 9999.
std::string writeDate(double seconds);

}  // namespace tavi::vault

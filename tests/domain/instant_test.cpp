#include "domain/instant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <ctime>
#include <limits>

namespace tavi {
namespace {

TEST(Instant, WritesWholeSecondsInUTC) {
  const std::pair<double, const char*> cases[] = {
      {0, "1970-01-01T00:00:00Z"},
      {1769846709.999, "2026-01-31T08:05:09Z"},
      {951782400, "2000-02-29T00:00:00Z"},
      {-0.25, "1969-12-31T23:59:59Z"},
      {-1, "1969-12-31T23:59:59Z"},
      {-2203891201, "1900-02-28T23:59:59Z"},  // 1900 was not a leap year
      {-2203891200, "1900-03-01T00:00:00Z"},
      {4107542400, "2100-03-01T00:00:00Z"},
      {253402300799.5, "9999-12-31T23:59:59Z"},
  };
  for (const auto& [seconds, text] : cases) {
    EXPECT_EQ(formatISO8601({seconds}), text) << seconds;
  }
  EXPECT_EQ(formatISO8601(Instant::distantPast()), "0001-01-01T00:00:00Z");
}

TEST(Instant, AgreesWithTheCLibraryOverEightCenturies) {
  for (std::int64_t seconds = -12'000'000'000; seconds < 12'000'000'000; seconds += 86'399 * 31) {
    const std::time_t time = seconds;
    std::tm parts{};
    gmtime_r(&time, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    ASSERT_EQ(formatISO8601({static_cast<double>(seconds)}), text);
  }
}

TEST(Instant, KeepsEveryValueWithinFourDigitYears) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double seconds : {-infinity, -1e300, -62135596801.0, std::nan("")}) {
    EXPECT_EQ(formatISO8601({seconds}), "0001-01-01T00:00:00Z") << seconds;
  }
  for (const double seconds : {infinity, 1e300, 253402300800.0}) {
    EXPECT_EQ(formatISO8601({seconds}), "9999-12-31T23:59:59Z") << seconds;
  }
}

}  // namespace
}  // namespace tavi

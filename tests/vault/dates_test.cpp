#include "vault/dates.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <random>

namespace tavi::vault {
namespace {

TEST(Dates, AreReadAsFilesWriteThem) {
  setenv("TZ", "Europe/Berlin", 1);
  tzset();
  const struct {
    const char* text;
    double seconds;
  } dates[] = {
      {"2026-01-31T08:05:09Z", 1769846709}, {"2026-01-31T08:05:09.25+01:00", 1769843109.25},
      {"2026-01-31 08:05", 1769843100},     {"2026-07-01", 1782856800},
      {"2026/7/1 0:00:00", 1782856800},     {"2026-01-31 08:05:09 -0530", 1769866509},
      {"1769846709", 1769846709},           {"1769846709250", 1769846709.25},
      {"1969-12-31T23:59:59.5Z", -0.5},
  };
  for (const auto& [text, seconds] : dates) EXPECT_EQ(readDate(text), seconds) << text;
  for (const char* text : {"", "soon", "2026", "2026-13-01", "2026-02-30", "2026-01-31T25:99",
                           "2026-01-31 and more", "12345"})
    EXPECT_EQ(readDate(text), std::nullopt) << text;
  unsetenv("TZ");
  tzset();
}

TEST(Dates, ComeBackAsTheVerySameNumber) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> any(-2e9, 4e9);
  for (int i = 0; i < 20'000; ++i) {
    const double date = any(random);
    ASSERT_EQ(readDate(writeDate(date)), date) << writeDate(date);
  }
  EXPECT_EQ(writeDate(1769846709), "2026-01-31T08:05:09Z");
  EXPECT_EQ(writeDate(1769846709.25), "2026-01-31T08:05:09.250Z");
}

}  // namespace
}  // namespace tavi::vault

#include "domain/instant.h"

#include <chrono>
#include <cmath>
#include <cstdint>

namespace tavi {
namespace {

constexpr double kEarliest = Instant::distantPast().seconds;
constexpr double kLatest = 253402300799;  // 9999-12-31 23:59:59 UTC: a year has four digits

/// Overwrites `digits` characters of `text` with the number, padded with zeros. Hand-written, since
/// a list of all notes formats two dates per row.
void write(std::string& text, std::size_t position, std::size_t digits, std::int64_t number) {
  for (std::size_t i = digits; i-- > 0; number /= 10) {
    text[position + i] = static_cast<char>('0' + number % 10);
  }
}

}  // namespace

std::string formatISO8601(Instant instant) {
  using namespace std::chrono;
  // The comparison is false for NaN, which so becomes the earliest date.
  const double inRange =
      instant.seconds >= kEarliest ? std::fmin(instant.seconds, kLatest) : kEarliest;
  const sys_seconds time{seconds(static_cast<std::int64_t>(std::floor(inRange)))};
  const sys_days day = floor<days>(time);
  const year_month_day date(day);
  const hh_mm_ss clock(time - day);
  std::string text = "YYYY-MM-DDThh:mm:ssZ";
  write(text, 0, 4, int{date.year()});
  write(text, 5, 2, unsigned{date.month()});
  write(text, 8, 2, unsigned{date.day()});
  write(text, 11, 2, clock.hours().count());
  write(text, 14, 2, clock.minutes().count());
  write(text, 17, 2, clock.seconds().count());
  return text;
}

}  // namespace tavi

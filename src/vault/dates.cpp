#include "vault/dates.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>

namespace tavi::vault {
namespace {

/// Reads a text from left to right. A part that does not match leaves the position unchanged.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool atEnd() const { return text_.empty(); }
  /// Skips one character if it is in `any`.
  bool skip(std::string_view any) {
    if (text_.empty() || any.find(text_.front()) == std::string_view::npos) return false;
    text_.remove_prefix(1);
    return true;
  }
  /// A number of at least `least` and at most `most` digits.
  std::optional<int> number(std::size_t least, std::size_t most) {
    std::size_t length = 0;
    while (length < most && length < text_.size() && text_[length] >= '0' && text_[length] <= '9')
      ++length;
    if (length < least) return std::nullopt;
    int value = 0;
    std::from_chars(text_.data(), text_.data() + length, value);
    text_.remove_prefix(length);
    return value;
  }
  /// ".25" or ",25"; 0 if there is none.
  double fraction() {
    if (text_.size() < 2 || (text_[0] != '.' && text_[0] != ',')) return 0;
    double value = 0;
    double place = 1;
    text_.remove_prefix(1);
    while (!text_.empty() && text_[0] >= '0' && text_[0] <= '9') {
      value = value * 10 + (text_[0] - '0');
      place *= 10;
      text_.remove_prefix(1);
    }
    return value / place;
  }

 private:
  std::string_view text_;
};

/// A time of day.
struct Clock {
  int hour = 0, minute = 0, second = 0;
  double fraction = 0;
};

std::optional<Clock> readClock(Reader& in) {
  Clock clock;
  const auto hour = in.number(1, 2);
  if (!hour || *hour > 24 || !in.skip(":")) return std::nullopt;
  const auto minute = in.number(2, 2);
  if (!minute || *minute > 59) return std::nullopt;
  clock.hour = *hour;
  clock.minute = *minute;
  if (!in.skip(":")) return clock;
  const auto second = in.number(2, 2);
  if (!second || *second > 60) return std::nullopt;
  clock.second = *second;
  clock.fraction = in.fraction();
  return clock;
}

/// The offset from UTC in seconds, positive in the east; absent if the text has no time zone.
std::optional<int> readZone(Reader& in) {
  in.skip(" ");
  if (in.skip("zZ")) return 0;
  const bool isEast = in.skip("+");
  if (!isEast && !in.skip("-")) return std::nullopt;
  const int hours = in.number(1, 2).value_or(0);
  in.skip(":");
  const int minutes = in.number(2, 2).value_or(0);
  return (isEast ? 1 : -1) * (hours * 60 + minutes) * 60;
}

std::optional<double> sinceEpoch(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value >= 1e11 && value < 1e14) return value / 1000;  // milliseconds, since 1973
  if (value >= 1e8 && value < 1e11) return value;
  return std::nullopt;
}

double localSeconds(std::chrono::year_month_day day, const Clock& clock) {
  std::tm local{};
  local.tm_year = int{day.year()} - 1900;
  local.tm_mon = static_cast<int>(unsigned{day.month()}) - 1;
  local.tm_mday = static_cast<int>(unsigned{day.day()});
  local.tm_hour = clock.hour;
  local.tm_min = clock.minute;
  local.tm_sec = clock.second;
  local.tm_isdst = -1;
  return static_cast<double>(std::mktime(&local));
}

}  // namespace

std::optional<double> readDate(std::string_view text) {
  using namespace std::chrono;
  if (const auto seconds = sinceEpoch(text)) return seconds;
  Reader in(text);
  const auto y = in.number(4, 4);
  if (!y || !in.skip("-/.")) return std::nullopt;
  const auto m = in.number(1, 2);
  if (!m || !in.skip("-/.")) return std::nullopt;
  const auto d = in.number(1, 2);
  if (!d) return std::nullopt;
  const year_month_day day{year{*y}, month{static_cast<unsigned>(*m)},
                           std::chrono::day{static_cast<unsigned>(*d)}};
  if (!day.ok()) return std::nullopt;
  Clock clock;
  std::optional<int> zone;
  if (!in.atEnd()) {
    if (!in.skip("Tt ")) return std::nullopt;
    const auto read = readClock(in);
    if (!read) return std::nullopt;
    clock = *read;
    zone = readZone(in);
    if (!in.atEnd()) return std::nullopt;
  }
  if (!zone) return localSeconds(day, clock) + clock.fraction;
  const auto days = sys_days(day).time_since_epoch().count();
  const auto whole = static_cast<std::int64_t>(days) * 86400 + clock.hour * 3600 +
                     clock.minute * 60 + clock.second - *zone;
  return static_cast<double>(whole) + clock.fraction;
}

std::string writeDate(double value) {
  using namespace std::chrono;
  constexpr double earliest = -62135596800;  // the years 1 to 9999
  constexpr double latest = 253402300799;
  if (!(value >= earliest)) value = earliest;
  if (value > latest) value = latest;
  const double whole = std::floor(value);
  const sys_seconds time{seconds(static_cast<std::int64_t>(whole))};
  const sys_days midnight = floor<days>(time);
  const year_month_day day(midnight);
  const hh_mm_ss clock(time - midnight);
  const auto written = [&](int digits) {
    std::string fraction = fmt::format("{:.{}f}", value - whole, digits);
    fraction.erase(0, 1);  // drops the zero before the point
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}Z", int{day.year()},
                       unsigned{day.month()}, unsigned{day.day()}, clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count(),
                       digits > 0 ? fraction : "");
  };
  if (value == whole) return written(0);
  for (const int digits : {3, 6, 7, 9}) {
    const std::string text = written(digits);
    if (readDate(text) == value) return text;
  }
  return written(17);
}

}  // namespace tavi::vault

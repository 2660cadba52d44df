#include "platform/model/search/local_day.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>

namespace tavimodel {
namespace {

double midnight(int year, int month, int day) {
  std::tm time{};
  time.tm_year = year - 1900;
  time.tm_mon = month - 1;
  time.tm_mday = day;  // mktime normalizes days out of range
  time.tm_isdst = -1;
  return static_cast<double>(std::mktime(&time));
}

std::optional<int> digits(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || text.front() == '-') return {};
  return value;
}

}  // namespace

double startOfDay(double now, int days) {
  const std::time_t seconds = static_cast<std::time_t>(std::floor(now));
  std::tm local{};
  localtime_r(&seconds, &local);
  return midnight(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday + days);
}

std::optional<double> startOfDate(std::string_view date, int days) {
  if (date.size() != 10 || date[4] != '-' || date[7] != '-') return std::nullopt;
  const auto year = digits(date.substr(0, 4));
  const auto month = digits(date.substr(5, 2));
  const auto day = digits(date.substr(8, 2));
  if (!year || !month || !day) return std::nullopt;
  const std::chrono::year_month_day named(std::chrono::year(*year),
                                          std::chrono::month(static_cast<unsigned>(*month)),
                                          std::chrono::day(static_cast<unsigned>(*day)));
  if (!named.ok()) return std::nullopt;
  return midnight(*year, *month, *day + days);
}

}  // namespace tavimodel

#pragma once

#include <array>
#include <string_view>

#include "platform/model/search/search_condition.h"

namespace tavimodel {

/// A directive for a span of days (see local_day.h). It is written as `begin`, a value, and `end`.
struct DateDirective {
  /// Which days the value means.
  enum class Form {
    today,      ///< no value
    yesterday,  ///< no value
    lastDays,   ///< a number of days that ends with today
    date,       ///< YYYY-MM-DD; with "<" in front the days before it, with ">" those after it
  };
  std::string_view begin;
  std::string_view end;  ///< empty if the directive takes no value
  Form form;
  SearchCondition::Kind kind;  ///< `modified` or `created`
  std::string_view example;
  std::string_view finds;  ///< which notes it finds, for help pages
};

inline constexpr std::array dateDirectives = [] {
  using Form = DateDirective::Form;
  using enum SearchCondition::Kind;
  return std::to_array<DateDirective>({
      {"today", "", Form::today, modified, "today", "changed today"},
      {"yesterday", "", Form::yesterday, modified, "yesterday", "changed yesterday"},
      {"last", "days", Form::lastDays, modified, "last7days",
       "changed today or on one of the 6 days before; any number"},
      {"date(", ")", Form::date, modified, "date(2026-01-31)",
       "changed on that day; before it with `<`, after it with `>` in front of the date"},
      {"ctoday", "", Form::today, created, "ctoday", "made today"},
      {"created", "days", Form::lastDays, created, "created7days",
       "made today or on one of the 6 days before; any number"},
      {"cdate(", ")", Form::date, created, "cdate(2026-01-31)", "made on that day, as `@date`"},
  });
}();

}  // namespace tavimodel

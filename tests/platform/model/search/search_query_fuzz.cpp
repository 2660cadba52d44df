#include <fmt/format.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "platform/markdown/hashtag.h"
#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/search_query.h"
#include "platform/text/utf8.h"
#include "support/fuzzing.h"

// Any text is a query or a SearchSyntaxError. A query's tree, written as a query again in its
// plainest form, gives the same tree.

namespace {

using namespace tavimodel;
using support::require;
using Kind = SearchCondition::Kind;

constexpr double kDay = 86'400;
constexpr double kNow = 20'000.5 * kDay;  // noon, UTC

std::string dateOf(double seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm utc{};
  gmtime_r(&time, &utc);
  return fmt::format("{:04}-{:02}-{:02}", utc.tm_year + 1900, utc.tm_mon + 1, utc.tm_mday);
}

std::string writtenRange(const SearchCondition& condition) {
  const bool created = condition.kind == Kind::created;
  const std::string date = created ? "@cdate" : "@date";
  if (!condition.from) return fmt::format("{}(<{})", date, dateOf(*condition.to));
  if (!condition.to) return fmt::format("{}(>{})", date, dateOf(*condition.from - kDay));
  const double days = (*condition.to - *condition.from) / kDay;
  if (days == 1) return fmt::format("{}({})", date, dateOf(*condition.from));
  return fmt::format("@{}{}days", created ? "created" : "last", days);
}

std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

std::string written(const SearchCondition& condition) {
  switch (condition.kind) {
    case Kind::term:
      return quoted(condition.text);
    case Kind::tag:
      return "#" + condition.text + "#";
    case Kind::exactTag:
      return "!#" + condition.text + "#";
    case Kind::subtag:
      return "#*/" + condition.text + "#";
    case Kind::modified:
    case Kind::created:
      return writtenRange(condition);
    default:
      return fmt::format("@{}", kindOf(condition).directive);
  }
}

std::string written(const SearchQuery& query) {
  std::string text = query.titlesOnly ? "@title" : "";
  for (const auto& group : query.groups) {
    for (const SearchCondition& condition : group) {
      text += &condition == &group.front() ? " " : " or ";
      text += (condition.negated ? "-" : "") + written(condition);
    }
  }
  return text;
}

void requireSame(const SearchQuery& a, const SearchQuery& b) {
  require(a.titlesOnly == b.titlesOnly && a.ocrOnly == b.ocrOnly);
  require(a.groups.size() == b.groups.size());
  for (std::size_t i = 0; i < a.groups.size(); ++i) {
    require(a.groups[i].size() == b.groups[i].size() && !a.groups[i].empty());
    for (std::size_t j = 0; j < a.groups[i].size(); ++j) {
      const SearchCondition& x = a.groups[i][j];
      const SearchCondition& y = b.groups[i][j];
      require(x.kind == y.kind && x.negated == y.negated && x.text == y.text);
      require(x.from == y.from && x.to == y.to);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TZ", "UTC", 1);
  tzset();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = platform::text::replacingInvalidUTF8(support::fuzzed(data, size));
  std::optional<SearchQuery> query;
  try {
    query = parseSearchQuery(text, kNow);
  } catch (const SearchSyntaxError& error) {
    require(platform::text::isValidUTF8(error.what()));
  }
  if (query) requireSame(*query, parseSearchQuery(written(*query), kNow));
  return 0;
}

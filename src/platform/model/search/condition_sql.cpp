#include "platform/model/search/condition_sql.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/model/search/backlinks.h"
#include "platform/model/search/image_names.h"
#include "platform/model/search/missing_facts.h"
#include "platform/model/storage/row_ids.h"
#include "platform/model/storage/tag_tree.h"

namespace tavimodel {
namespace {

using Index = ConditionKind::Index;
using Needs = ConditionKind::Needs;

bool needs(const SearchQuery& query, Needs what) {
  return std::any_of(query.groups.begin(), query.groups.end(), [&](const auto& group) {
    return std::any_of(group.begin(), group.end(),
                       [&](const SearchCondition& c) { return kindOf(c).needs == what; });
  });
}

bool selectsNotes(const ConditionKind& kind) {
  return kind.index == Index::relation || kind.index == Index::ids;
}

constexpr double never = std::numeric_limits<double>::infinity();

}  // namespace

ConditionSQL::ConditionSQL(const SearchQuery& query, sqlite::Connection& connection)
    : connection_(connection) {
  areFactsMissing_ = needs(query, Needs::facts) && workOutMissingFacts(connection);
  if (needs(query, Needs::imageNames)) defineIsImageName(connection);
}

std::string ConditionSQL::parameter(Parameter value) {
  parameters_.push_back(std::move(value));
  return fmt::format("?{}", parameters_.size());
}

/// The parameter with the notes that others link to, which are looked up once.
const std::string& ConditionSQL::linkedNotesParameter() {
  if (linkedNotes_.empty()) linkedNotes_ = parameter(jsonArray(linkedNotes(connection_)));
  return linkedNotes_;
}

/// The kind's SQL, with its placeholders replaced by parameters.
std::string ConditionSQL::filledIn(const SearchCondition& condition) {
  const ConditionKind& kind = kindOf(condition);
  std::string sql(kind.sql);
  const auto replaceAll = [&](std::string_view name, auto value) {
    std::size_t at = sql.find(name);
    if (at == std::string::npos) return;
    for (const std::string text = value(); at != std::string::npos;) {
      sql.replace(at, name.size(), text);
      at = sql.find(name, at + text.size());
    }
  };
  replaceAll(":text", [&] {
    return kind.needs == Needs::backlinks ? linkedNotesParameter() : parameter(condition.text);
  });
  replaceAll(":tree", [&] { return isInTagTree("title", parameter(condition.text)); });
  replaceAll(":from", [&] { return parameter(condition.from.value_or(-never)); });
  replaceAll(":to", [&] { return parameter(condition.to.value_or(never)); });
  return sql;
}

std::string ConditionSQL::factTest(const std::string& test) const {
  if (!areFactsMissing_) return test;
  return fmt::format(
      "CASE WHEN s.textDigest IS NULL THEN s.note IN (SELECT note FROM temp.workedOut WHERE {0}) "
      "ELSE {0} END",
      test);
}

std::string ConditionSQL::test(const SearchCondition& condition) {
  const ConditionKind& kind = kindOf(condition);
  std::string test = filledIn(condition);
  if (selectsNotes(kind)) test = fmt::format("s.note IN ({})", test);
  if (kind.needs == Needs::facts) test = factTest(test);
  return kind.isSecret ? fmt::format("(s.encrypted = 0 AND {})", test) : fmt::format("({})", test);
}

std::string ConditionSQL::candidates(const SearchCondition& condition) {
  const ConditionKind& kind = kindOf(condition);
  if (kind.needs == Needs::facts && areFactsMissing_) return {};
  switch (kind.index) {
    case Index::none:
      break;
    case Index::byPlace:
      return fmt::format(
          "SELECT note FROM noteSummary WHERE trashed IN (0, 1) AND archived IN (0, 1) AND {}",
          filledIn(condition));
    case Index::ofFew:
      return fmt::format("SELECT note FROM noteSummary WHERE {}", filledIn(condition));
    case Index::relation:
    case Index::ids:
      return filledIn(condition);
  }
  return {};
}

void ConditionSQL::bind(sqlite::Query& query) const {
  const int count = std::min(parameterCount(), query.parameterCount());
  for (int number = 1; number <= count; ++number) {
    std::visit([&](const auto& value) { query.bind(number, value); },
               parameters_[static_cast<std::size_t>(number) - 1]);
  }
}

}  // namespace tavimodel

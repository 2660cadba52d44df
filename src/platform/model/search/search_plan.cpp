#include "platform/model/search/search_plan.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tavimodel {
namespace {

bool isTerm(const SearchCondition& condition) {
  return condition.kind == SearchCondition::Kind::term;
}

}  // namespace

SearchPlan::SearchPlan(const SearchQuery& query, sqlite::Connection& connection,
                       std::int64_t mostDriven)
    : connection_(connection),
      titlesOnly_(query.titlesOnly),
      ocrOnly_(query.ocrOnly),
      sql_(query, connection) {
  for (const auto& group : query.groups) {
    if (std::any_of(group.begin(), group.end(), isTerm)) {
      addOpenGroup(group);
      addRequiredTerms(group);
    } else {
      addToWhere(group);
      addDriver(group);
    }
  }
  chooseDriver(mostDriven);
}

void SearchPlan::addToWhere(const std::vector<SearchCondition>& group) {
  std::string anyOf;
  for (const SearchCondition& condition : group) {
    if (!anyOf.empty()) anyOf += " OR ";
    const std::string test = sql_.test(condition);
    anyOf += condition.negated ? fmt::format("NOT ifnull({}, 0)", test) : test;
  }
  where_ += fmt::format(" AND ({})", anyOf);
}

void SearchPlan::addOpenGroup(const std::vector<SearchCondition>& group) {
  std::vector<OpenCondition>& open = groups_.emplace_back();
  for (const SearchCondition& condition : group) {
    if (isTerm(condition)) {
      open.push_back({condition.negated, true, terms_.add(condition.text)});
    } else {
      open.push_back({condition.negated, false, columnCount_++});
      columns_ += ", " + sql_.test(condition);
    }
  }
}

void SearchPlan::addRequiredTerms(const std::vector<SearchCondition>& group) {
  if (ocrOnly_) return;
  std::set<std::string> terms;
  for (const SearchCondition& condition : group) {
    if (!isTerm(condition) || condition.negated) return;
    terms.insert(condition.text);
  }
  requiredTerms_.emplace_back(terms.begin(), terms.end());
}

/// The candidates come first in the join. Without statistics, SQLite would rather scan all notes of
/// a location than look up the ten of a tag.
void SearchPlan::addDriver(const std::vector<SearchCondition>& group) {
  std::string notes;
  for (const SearchCondition& condition : group) {
    const std::string some = condition.negated ? std::string() : sql_.candidates(condition);
    if (some.empty()) return;
    notes += (notes.empty() ? "" : " UNION ") + some;
  }
  const bool hasDuplicates =
      group.size() == 1 && kindOf(group.front()).index != ConditionKind::Index::ids;
  drivers_.push_back(hasDuplicates ? notes + " GROUP BY note" : notes);
}

void SearchPlan::chooseDriver(std::int64_t most) {
  for (const std::string& driver : drivers_) {
    const int limitParameter = parameterCount() + 1;
    sqlite::Query count = connection_.query(
        fmt::format("SELECT count(*) FROM (SELECT 1 FROM ({}) LIMIT ?{})", driver, limitParameter));
    bind(count);
    const std::int64_t limit = std::min(most, drivenNotes_.value_or(most) - 1) + 1;
    count.bind(limitParameter, limit).step();
    if (count.integer(0) >= limit) continue;
    drivenNotes_ = count.integer(0);
    driver_ = driver;
  }
}

std::string SearchPlan::source() const {
  if (driver_.empty()) return "noteSummary s";
  return fmt::format("({}) driver CROSS JOIN noteSummary s ON s.note = driver.note", driver_);
}

bool SearchPlan::matches(std::string_view title, std::string_view text, const sqlite::Query& row,
                         int column) const {
  TermsInText inTitle(terms_, ocrOnly_ ? std::string_view() : title);
  TermsInText inText(terms_, titlesOnly_ ? std::string_view() : text);
  const auto holds = [&](const OpenCondition& condition) {
    const bool found = condition.isTerm
                           ? inText.has(condition.number) || inTitle.has(condition.number)
                           : row.integer(column + static_cast<int>(condition.number)) != 0;
    return found != condition.negated;
  };
  return std::all_of(groups_.begin(), groups_.end(), [&](const auto& group) {
    return std::any_of(group.begin(), group.end(), holds);
  });
}

}  // namespace tavimodel

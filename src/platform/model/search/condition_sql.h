#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/search_query.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Writes the conditions of one query as SQL over `noteSummary s`. Keeps the values of the
/// parameters, which are numbered from ?1 across everything it has written.
class ConditionSQL {
 public:
  /// Prepares what the query's conditions need, which may read texts. Throws sqlite::Error.
  ConditionSQL(const SearchQuery& query, sqlite::Connection& connection);

  /// Returns a test that is 1 if the condition holds, and otherwise 0 or NULL. Ignores `negated`.
  /// Not for terms.
  std::string test(const SearchCondition& condition);
  /// Returns a SELECT of all notes that satisfy the condition, and possibly of others, that needs
  /// no full scan; empty if no index supports it.
  std::string candidates(const SearchCondition& condition);

  int parameterCount() const { return static_cast<int>(parameters_.size()); }
  /// Binds those of the parameters that the statement has.
  void bind(sqlite::Query& query) const;

 private:
  using Parameter = std::variant<double, std::string>;

  std::string parameter(Parameter value);
  const std::string& linkedNotesParameter();
  std::string filledIn(const SearchCondition& condition);
  std::string factTest(const std::string& test) const;

  sqlite::Connection& connection_;
  bool areFactsMissing_ = false;  ///< for some notes; these are in temp.workedOut
  std::vector<Parameter> parameters_;
  std::string linkedNotes_;  ///< a parameter; empty until it is needed
};

}  // namespace tavimodel

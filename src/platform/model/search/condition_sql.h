#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/model/search/condition_kinds.h"
#include "platform/model/search/search_query.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// Writes the conditions of one query as SQL over `noteSummary s`, and keeps the values that the
/// SQL names as parameters: ?1 and on, shared by all that it has written.
class ConditionSQL {
 public:
  /// Gets everything ready that the query's conditions need; that may read texts.
  ConditionSQL(const SearchQuery& query, sqlite::Connection& connection);

  /// A test that is 1 where the condition holds, and 0 or NULL elsewhere. Does not look at
  /// `negated`. Not for terms.
  std::string test(const SearchCondition& condition);
  /// A SELECT of all notes in which the condition holds, and perhaps of some others, that takes no
  /// walk over all notes; empty where there is no index for it.
  std::string candidates(const SearchCondition& condition);

  int parameterCount() const { return static_cast<int>(parameters_.size()); }
  /// Binds the parameters, as far as the statement has them.
  void bind(sqlite::Query& query) const;

 private:
  using Parameter = std::variant<double, std::string>;

  std::string parameter(Parameter value);
  std::string filledIn(const SearchCondition& condition);
  std::string factTest(const std::string& test) const;

  sqlite::Connection& connection_;
  bool areFactsMissing_ = false;  ///< of some notes: temp.workedOut has them
  std::vector<Parameter> parameters_;
};

}  // namespace tavimodel

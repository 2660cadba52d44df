#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/model/search/condition_sql.h"
#include "platform/model/search/search_query.h"
#include "platform/model/search/search_terms.h"
#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// The plan of one query. SQL evaluates groups without terms; groups with terms are evaluated note
/// by note, from the text and from columns with the results of their other conditions.
class SearchPlan {
 public:
  /// Derives missing text facts if the query needs them, which reads texts. An index supplies
  /// candidates only if they are at most `mostDriven` notes. Throws sqlite::Error.
  SearchPlan(const SearchQuery& query, sqlite::Connection& connection, std::int64_t mostDriven);

  /// FROM clause: `noteSummary s`, joined to the candidates an index supplies, if any.
  std::string source() const;
  /// The number of candidates that an index supplies; absent if `source` has all notes.
  std::optional<std::int64_t> drivenNotes() const { return drivenNotes_; }
  /// WHERE clause on `noteSummary s` for the groups without terms; "1" if there are none.
  const std::string& where() const { return where_; }
  /// SELECT list: a column for each condition without a term in the groups with terms. Each column
  /// begins with a comma.
  const std::string& columns() const { return columns_; }
  /// Binds those parameters of the three clauses that the statement has, numbered from ?1.
  void bind(sqlite::Query& query) const { sql_.bind(query); }
  int parameterCount() const { return sql_.parameterCount(); }

  /// Some notes that SQL leaves must still be checked with `matches`.
  bool needsText() const { return !groups_.empty(); }
  bool ocrOnly() const { return ocrOnly_; }
  bool titlesOnly() const { return titlesOnly_; }

  /// Whether the note satisfies the groups with terms. `row` is the note's row, in which
  /// `columns()` begin at `column`. With `ocrOnly`, `text` is the recognised text of its
  /// attachments.
  bool matches(std::string_view title, std::string_view text, const sqlite::Query& row,
               int column) const;

  /// The terms of each group that has only terms, none of them negated: a note must contain one
  /// term of each group. The trigram index can narrow the search by each group.
  const std::vector<std::vector<std::string>>& requiredTerms() const { return requiredTerms_; }

 private:
  /// A condition of a group with terms.
  struct OpenCondition {
    bool negated = false;
    bool isTerm = false;
    std::size_t number =
        0;  ///< of the term, or of the column, counted from the first of `columns()`
  };

  void addToWhere(const std::vector<SearchCondition>& group);
  void addDriver(const std::vector<SearchCondition>& group);
  void addOpenGroup(const std::vector<SearchCondition>& group);
  void addRequiredTerms(const std::vector<SearchCondition>& group);
  void chooseDriver(std::int64_t most);

  sqlite::Connection& connection_;
  bool titlesOnly_;
  bool ocrOnly_;
  ConditionSQL sql_;
  std::vector<std::string> drivers_;  ///< SELECTs of the candidates of one group each
  std::string driver_;                ///< one of them, or empty
  std::optional<std::int64_t> drivenNotes_;
  std::string where_ = "1";
  std::string columns_;
  std::size_t columnCount_ = 0;
  std::vector<std::vector<OpenCondition>> groups_;
  SearchTerms terms_;
  std::vector<std::vector<std::string>> requiredTerms_;
};

}  // namespace tavimodel

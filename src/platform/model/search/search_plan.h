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

/// How one query is answered: groups without terms are decided by SQL, those with terms note by
/// note, on the text and on what SQL says of their other conditions.
class SearchPlan {
 public:
  /// Reads the texts of notes whose facts are missing, where the query asks for such facts.
  /// `mostDriven`: an index supplies candidates only where there are no more than these.
  SearchPlan(const SearchQuery& query, sqlite::Connection& connection, std::int64_t mostDriven);

  /// For a FROM clause: `noteSummary s`, joined to the candidates that an index supplies, if any.
  std::string source() const;
  /// How many candidates an index supplies; absent: `source` is all notes.
  std::optional<std::int64_t> drivenNotes() const { return drivenNotes_; }
  /// For a WHERE clause over `noteSummary s`: the groups without terms. "1" when there are none.
  const std::string& where() const { return where_; }
  /// For a SELECT list: what SQL decides of the groups with terms, one column for each condition.
  /// Each begins with a comma.
  const std::string& columns() const { return columns_; }
  /// Binds the parameters of all three, ?1 and on, as far as the statement has them.
  void bind(sqlite::Query& query) const { sql_.bind(query); }
  int parameterCount() const { return sql_.parameterCount(); }

  /// Some notes that SQL leaves must still be checked with `matches`.
  bool needsText() const { return !groups_.empty(); }
  bool ocrOnly() const { return ocrOnly_; }
  bool titlesOnly() const { return titlesOnly_; }

  /// Decides the groups with terms. `row` stands on the note, and `column` is the first of
  /// `columns()` in it. With `ocrOnly`, `text` is the recognised text.
  bool matches(std::string_view title, std::string_view text, const sqlite::Query& row,
               int column) const;

  /// For each group of nothing but terms: these, of which a note must have one. The trigram index
  /// may narrow the search by each group.
  const std::vector<std::vector<std::string>>& requiredTerms() const { return requiredTerms_; }

 private:
  /// A condition of a group with terms.
  struct OpenCondition {
    bool negated = false;
    bool isTerm = false;
    std::size_t number = 0;  ///< of the term, or of the column behind the first of `columns()`
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
  std::vector<std::string> drivers_;  ///< SELECTs of the notes in which a group may hold
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

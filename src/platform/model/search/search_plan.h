#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/model/search/search_query.h"
#include "platform/model/storage/sqlite.h"
#include "platform/text/string_search.h"

namespace tavimodel {

/// How one query is answered: what SQL decides by itself, and what is left to be decided on a
/// note's text. SQL decides everything but terms.
class SearchPlan {
 public:
  /// Reads the texts of notes whose facts are not known, where the query asks for such facts.
  /// `mostDriven`: how many notes `source` may narrow the search to.
  SearchPlan(const SearchQuery& query, sqlite::Connection& connection, std::int64_t mostDriven);

  /// For a FROM clause: `noteSummary s`, behind the few notes that an index says one of the groups
  /// holds in, where there is such a group.
  std::string source() const;
  /// How many notes these are.
  std::optional<std::int64_t> drivenNotes() const { return drivenNotes_; }
  /// For a WHERE clause over `noteSummary s`: the groups that SQL decides whole. "1" for none.
  const std::string& where() const { return where_; }
  /// For the SELECT list: what SQL knows of the groups with terms, one column a condition. Each
  /// begins with a comma.
  const std::string& columns() const { return columns_; }
  /// Binds the parameters of all three, ?1 and on, as far as the statement has them.
  void bind(sqlite::Query& query) const;
  int parameterCount() const { return static_cast<int>(parameters_.size()); }

  /// Whether notes are left to be decided by `decides`.
  bool needsText() const { return !groups_.empty(); }
  bool ocrOnly() const { return ocrOnly_; }
  bool titlesOnly() const { return titlesOnly_; }

  /// Decides the groups with terms. `row` stands on a note, `column` is the first of `columns()`.
  bool matches(std::string_view title, std::string_view text, const sqlite::Query& row,
               int column) const;

  /// Groups that can only hold in notes with one of these terms; the index may narrow by each.
  const std::vector<std::vector<std::string>>& requiredTerms() const { return requiredTerms_; }

 private:
  using Parameter = std::variant<double, std::string>;
  struct OpenCondition {
    bool negated = false;
    int column = 0;  ///< behind the first of `columns()`; of a condition that SQL decides
    std::optional<platform::text::StringSearch> term;
  };

  void addGroup(const std::vector<SearchCondition>& group);
  void addDriver(const std::vector<SearchCondition>& group);
  void chooseDriver(std::int64_t most);
  std::string parameter(Parameter value);
  std::string range(const SearchCondition& condition, std::string_view column);
  std::string tagsNamed(const SearchCondition& condition);
  std::string fact(std::string_view test) const;
  std::string notesOf(const SearchCondition& condition);
  std::string expression(const SearchCondition& condition);

  sqlite::Connection& connection_;
  bool titlesOnly_;
  bool ocrOnly_;
  bool areFactsMissing_ = false;      ///< of some notes, which temp.workedOut has
  std::vector<std::string> drivers_;  ///< SELECTs of the notes in which a group holds
  std::string driver_;                ///< one of them, or empty
  std::optional<std::int64_t> drivenNotes_;
  std::string where_ = "1";
  std::string columns_;
  int columnCount_ = 0;
  std::vector<Parameter> parameters_;
  std::vector<std::vector<OpenCondition>> groups_;
  std::vector<std::vector<std::string>> requiredTerms_;
};

}  // namespace tavimodel

#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tavimodel {

struct SearchQuery;

/// A condition on the objects of a fetch.
class Predicate {
 public:
  /// Reads a format text: comparisons of an attribute with YES, NO, nil or a number, joined with
  /// AND or OR (AND binds tighter); "RELATION.@count > 0" asks whether a relation has members.
  /// Throws std::invalid_argument for anything else: formats are constants of the program.
  static Predicate withFormat(std::string_view format);
  static Predicate andPredicate(const std::vector<Predicate>& subpredicates);
  /// The notes that a query of the search language finds.
  static Predicate matching(std::shared_ptr<const SearchQuery> query);

  /// The part that SQL decides, as a condition on the entity's columns; "1" when there is none.
  const std::string& sql() const { return sql_; }
  /// The part that is decided on the texts, or null.
  const std::shared_ptr<const SearchQuery>& search() const { return search_; }

 private:
  std::string sql_ = "1";
  std::shared_ptr<const SearchQuery> search_;
};

}  // namespace tavimodel

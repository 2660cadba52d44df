#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "domain/failure.h"

namespace tavi {

/// The properties that notes can be sorted by.
enum class SortField { pinned, modified, created, title };
enum class SortOrder { asc, desc };

/// One sort key. "pinned:desc" puts pinned notes first.
struct SortCriterion {
  SortField field = SortField::pinned;
  SortOrder order = SortOrder::desc;
  bool operator==(const SortCriterion&) const = default;
};

/// Sort keys by descending precedence. `parseSortCriteria` never returns an empty list.
using SortCriteria = std::vector<SortCriterion>;

std::string_view rawText(SortField field);
std::string_view rawText(SortOrder order);

/// A sort string is invalid. `offender` is the invalid part, which the message quotes.
class SortParseError : public Failure {
 public:
  enum class Kind { invalidField, invalidOrder, duplicateField, empty };
  SortParseError(Kind kind, std::string_view offender);
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

/// Parses a list such as "pinned,modified:asc". Fields without an order are descending. Throws
/// SortParseError for the first error.
SortCriteria parseSortCriteria(std::string_view text);

}  // namespace tavi

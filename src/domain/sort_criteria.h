#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "domain/failure.h"

namespace tavi {

enum class SortField { pinned, modified, created, title };
enum class SortOrder { asc, desc };

struct SortCriterion {
  SortField field = SortField::pinned;
  SortOrder order = SortOrder::desc;
  bool operator==(const SortCriterion&) const = default;
};

/// Earlier criteria decide first. Never empty when it comes from `parseSortCriteria`.
using SortCriteria = std::vector<SortCriterion>;

std::string_view rawText(SortField field);
std::string_view rawText(SortOrder order);

/// What is wrong with a sort string.
class SortParseError : public Failure {
 public:
  enum class Kind { invalidField, invalidOrder, duplicateField, empty };
  SortParseError(Kind kind, std::string_view offender);
  Kind kind() const { return kind_; }

 private:
  Kind kind_;
};

/// Reads "pinned,modified:asc". A field without a direction is descending. Throws SortParseError
/// at the first fault.
SortCriteria parseSortCriteria(std::string_view text);

}  // namespace tavi

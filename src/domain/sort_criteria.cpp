#include "domain/sort_criteria.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <optional>

#include "domain/raw_texts.h"
#include "platform/text/utf8.h"

namespace tavi {
namespace {

// In the order of the enumerations.
constexpr std::array<std::string_view, 4> kFields = {"pinned", "modified", "created", "title"};
constexpr std::array<std::string_view, 2> kOrders = {"asc", "desc"};

std::string wording(SortParseError::Kind kind, std::string_view offender) {
  switch (kind) {
    case SortParseError::Kind::invalidField:
      return fmt::format("invalid sort field: {} (valid: {})", offender, fmt::join(kFields, ", "));
    case SortParseError::Kind::invalidOrder:
      return fmt::format("invalid sort order: {} (valid: {})", offender, fmt::join(kOrders, ", "));
    case SortParseError::Kind::duplicateField:
      return fmt::format("duplicate sort field: {}", offender);
    case SortParseError::Kind::empty:
      break;
  }
  return "sort string is empty";
}

/// Splits "title:asc" or "title" at the first colon into field and order, which is empty if there
/// is no colon. Leading colons are ignored.
struct Piece {
  explicit Piece(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(':'), text.size()));
    field = text.substr(0, text.find(':'));
    order = text.substr(std::min(field.size() + 1, text.size()));
  }

  std::string_view field;
  std::string_view order;
};

SortField fieldNamed(std::string_view text) {
  if (const auto field = valueOf<SortField>(kFields, text)) return *field;
  throw SortParseError(SortParseError::Kind::invalidField, text);
}

SortOrder orderNamed(std::string_view text) {
  if (text.empty()) return SortOrder::desc;
  if (const auto order = valueOf<SortOrder>(kOrders, text)) return *order;
  throw SortParseError(SortParseError::Kind::invalidOrder, text);
}

}  // namespace

std::string_view rawText(SortField field) {
  return textOf(kFields, field);
}
std::string_view rawText(SortOrder order) {
  return textOf(kOrders, order);
}

SortParseError::SortParseError(Kind kind, std::string_view offender)
    : Failure(wording(kind, offender)), kind_(kind) {}

SortCriteria parseSortCriteria(std::string_view text) {
  SortCriteria result;
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const std::string_view part = text.substr(0, comma);
    text.remove_prefix(std::min(comma + 1, text.size()));
    if (part.empty()) continue;
    const Piece piece(platform::text::trimmingBlanks(part));
    const SortField field = fieldNamed(piece.field);
    const auto isTheSame = [field](const SortCriterion& earlier) { return earlier.field == field; };
    if (std::any_of(result.begin(), result.end(), isTheSame)) {
      throw SortParseError(SortParseError::Kind::duplicateField, piece.field);
    }
    result.push_back({field, orderNamed(piece.order)});
  }
  if (result.empty()) throw SortParseError(SortParseError::Kind::empty, "");
  return result;
}

}  // namespace tavi

#include "platform/model/lists/tag_names.h"

#include <algorithm>
#include <numeric>

#include "platform/text/ordering.h"

namespace tavimodel {

void TagNames::readAll() {
  sqlite::Query query = connection_.query("SELECT id, title FROM tag");
  while (query.step()) {
    numbers_.emplace(query.integer(0), static_cast<std::uint32_t>(names_.size()));
    names_.push_back(arena_.keep(query.text(1)));
  }
  hasAll_ = true;
}

std::optional<std::uint32_t> TagNames::numberOf(std::int64_t tag) {
  if (const auto known = numbers_.find(tag); known != numbers_.end()) return known->second;
  if (hasAll_) return std::nullopt;
  sqlite::Query query = connection_.query("SELECT title FROM tag WHERE id = ?1");
  query.bind(1, tag);
  if (!query.step()) return std::nullopt;
  const auto number = static_cast<std::uint32_t>(names_.size());
  numbers_.emplace(tag, number);
  names_.push_back(arena_.keep(query.text(0)));
  return number;
}

std::vector<std::uint32_t> TagNames::numbersInOrder() const {
  std::vector<std::uint32_t> numbers(names_.size());
  std::iota(numbers.begin(), numbers.end(), std::uint32_t{0});
  std::sort(numbers.begin(), numbers.end(), [&](std::uint32_t a, std::uint32_t b) {
    return platform::text::CodePointLess()(names_[a], names_[b]);
  });
  return numbers;
}

std::vector<std::uint32_t> TagNames::ranks() const {
  const std::vector<std::uint32_t> numbers = numbersInOrder();
  std::vector<std::uint32_t> ranks(numbers.size());
  for (std::uint32_t rank = 0; rank < numbers.size(); ++rank) ranks[numbers[rank]] = rank;
  return ranks;
}

std::vector<std::string_view> TagNames::sorted() const {
  std::vector<std::string_view> names;
  for (const std::uint32_t number : numbersInOrder()) names.push_back(names_[number]);
  return names;
}

}  // namespace tavimodel

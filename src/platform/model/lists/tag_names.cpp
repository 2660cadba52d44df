#include "platform/model/lists/tag_names.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "platform/text/ordering.h"

namespace tavimodel {

void TagNames::readAll() {
  // The index has them in the order of their bytes, which is that of `sort` for nearly all names.
  sqlite::Query query = connection_.query("SELECT id, title FROM tag ORDER BY title");
  while (query.step()) {
    const std::int64_t tag = query.integer(0);
    const auto number = static_cast<std::uint32_t>(names_.size());
    if (tag >= 0 && tag < mostInTable) {
      const auto place = static_cast<std::size_t>(tag);
      if (place >= table_.size()) table_.resize(place + 1, absent);
      table_[place] = number;
    } else {
      numbers_.emplace(tag, number);
    }
    names_.push_back(arena_.keep(query.text(1)));
  }
  hasAll_ = true;
}

std::optional<std::uint32_t> TagNames::numberOf(std::int64_t tag) {
  if (tag >= 0 && tag < static_cast<std::int64_t>(table_.size())) {
    const std::uint32_t number = table_[static_cast<std::size_t>(tag)];
    return number != absent ? std::optional(number) : std::nullopt;
  }
  if (const auto known = numbers_.find(tag); known != numbers_.end()) return known->second;
  if (hasAll_) return std::nullopt;
  if (!name_) name_.emplace(connection_.query("SELECT title FROM tag WHERE id = ?1"));
  name_->reset().bind(1, tag);
  if (!name_->step()) return std::nullopt;
  const auto number = static_cast<std::uint32_t>(names_.size());
  numbers_.emplace(tag, number);
  names_.push_back(arena_.keep(name_->text(0)));
  return number;
}

std::vector<std::uint32_t> TagNames::sort() {
  std::vector<std::uint32_t> numbers(names_.size());
  std::iota(numbers.begin(), numbers.end(), std::uint32_t{0});
  const auto byName = [&](std::uint32_t a, std::uint32_t b) {
    return platform::text::CodePointLess()(names_[a], names_[b]);
  };
  if (!std::ranges::is_sorted(numbers, byName)) std::ranges::sort(numbers, byName);
  std::vector<std::uint32_t> ranks(numbers.size());
  std::vector<std::string_view> sorted;
  sorted.reserve(numbers.size());
  for (const std::uint32_t number : numbers) {
    ranks[number] = static_cast<std::uint32_t>(sorted.size());
    sorted.push_back(names_[number]);
  }
  names_ = std::move(sorted);
  return ranks;
}

}  // namespace tavimodel

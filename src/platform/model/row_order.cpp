#include "platform/model/row_order.h"

#include <algorithm>
#include <array>
#include <limits>
#include <numeric>
#include <string>

#include "platform/text/ordering.h"

namespace tavimodel {
namespace {

// All keys become numbers, a title its rank, so that one sort over small values does the work.
constexpr std::size_t mostDescriptors = 4;

struct Entry {
  std::array<double, mostDescriptors> keys{};
  double tie = 0;
  std::size_t index = 0;
};

std::vector<double> titleRanks(const std::vector<NoteRow>& rows, bool localized) {
  std::vector<std::string> keys;
  keys.reserve(rows.size());
  const platform::text::LocalizedCaseInsensitiveCollator collator;
  for (const NoteRow& row : rows) {
    const std::string title = row.title.value_or("");
    keys.push_back(localized ? collator.sortKey(title) : title);
  }
  std::vector<std::size_t> order(rows.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(),
            [&](std::size_t a, std::size_t b) { return keys[a] < keys[b]; });
  std::vector<double> ranks(rows.size());
  double rank = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && keys[order[i]] != keys[order[i - 1]]) ++rank;
    ranks[order[i]] = rank;
  }
  return ranks;
}

double dateKey(const std::optional<double>& date) {
  return date.value_or(-std::numeric_limits<double>::infinity());
}

std::vector<double> keysOf(const std::vector<NoteRow>& rows, const SortDescriptor& descriptor) {
  if (descriptor.key == SortKey::title) return titleRanks(rows, descriptor.localized);
  std::vector<double> keys;
  keys.reserve(rows.size());
  for (const NoteRow& row : rows) {
    keys.push_back(descriptor.key == SortKey::pinned             ? (row.pinned ? 1 : 0)
                   : descriptor.key == SortKey::modificationDate ? dateKey(row.modificationDate)
                                                                 : dateKey(row.creationDate));
  }
  return keys;
}

}  // namespace

std::vector<NoteRow> sortedPage(std::vector<NoteRow> rows, const FetchRequest& request) {
  std::vector<Entry> entries(rows.size());
  const std::size_t used = std::min(request.sortDescriptors.size(), mostDescriptors);
  for (std::size_t d = 0; d < used; ++d) {
    const SortDescriptor& descriptor = request.sortDescriptors[d];
    const std::vector<double> keys = keysOf(rows, descriptor);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      entries[i].keys[d] = descriptor.ascending ? keys[i] : -keys[i];
    }
  }
  const bool ascending =
      request.sortDescriptors.empty() || request.sortDescriptors.back().ascending;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    entries[i].tie = static_cast<double>(ascending ? rows[i].id : -rows[i].id);
    entries[i].index = i;
  }
  std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
    return a.keys != b.keys ? a.keys < b.keys : a.tie < b.tie;
  });
  const auto size = static_cast<std::int64_t>(entries.size());
  const std::int64_t begin = std::min(request.fetchOffset, size);
  const std::int64_t end = begin + std::min(request.fetchLimit, size - begin);
  std::vector<NoteRow> page;
  page.reserve(static_cast<std::size_t>(end - begin));
  for (std::int64_t i = begin; i < end; ++i) {
    page.push_back(std::move(rows[entries[static_cast<std::size_t>(i)].index]));
  }
  return page;
}

std::string orderClause(const FetchRequest& request) {
  std::string clause;
  for (const SortDescriptor& descriptor : request.sortDescriptors) {
    if (descriptor.key == SortKey::title && descriptor.localized) return {};
    const std::string_view column = descriptor.key == SortKey::pinned ? "s.pinned"
                                    : descriptor.key == SortKey::modificationDate
                                        ? "s.modificationDate"
                                    : descriptor.key == SortKey::creationDate ? "s.creationDate"
                                                                              : "s.title";
    clause += clause.empty() ? " ORDER BY " : ", ";
    clause += column;
    clause += descriptor.ascending ? "" : " DESC";
  }
  const bool ascending =
      request.sortDescriptors.empty() || request.sortDescriptors.back().ascending;
  clause += clause.empty() ? " ORDER BY " : ", ";
  return clause + (ascending ? "s.note" : "s.note DESC");
}

}  // namespace tavimodel

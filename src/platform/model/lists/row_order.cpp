#include "platform/model/lists/row_order.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <string>

#include "platform/text/ordering.h"

namespace tavimodel {
namespace {

// All keys become numbers, a title its rank. `prefix` packs the leading bits of the first two keys,
// so that one sort over small values does nearly all the work; ties compare all keys.
struct Entry {
  std::uint64_t prefix = 0;
  std::uint32_t index = 0;
};

/// Maps doubles to integers of the same order.
std::uint64_t ordered(double key) {
  constexpr std::uint64_t sign = std::uint64_t{1} << 63;
  const auto bits = std::bit_cast<std::uint64_t>(key + 0.0);  // turns -0.0 into 0.0
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

std::vector<double> titleRanks(const std::vector<ListedRow>& rows, bool localized) {
  std::vector<std::string> keys;
  keys.reserve(rows.size());
  const platform::text::LocalizedCaseInsensitiveCollator collator;
  for (const ListedRow& row : rows) {
    keys.push_back(localized ? collator.sortKey(row.title()) : std::string(row.title()));
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

double dateKey(double date) {
  return std::isnan(date) ? -std::numeric_limits<double>::infinity() : date;
}

/// Ascending keys of the rows for one descriptor.
std::vector<double> keysOf(const std::vector<ListedRow>& rows, const SortDescriptor& descriptor) {
  std::vector<double> keys;
  if (descriptor.key == SortKey::title) {
    keys = titleRanks(rows, descriptor.localized);
  } else {
    keys.reserve(rows.size());
    for (const ListedRow& row : rows) {
      keys.push_back(descriptor.key == SortKey::pinned             ? (row.pinned ? 1 : 0)
                     : descriptor.key == SortKey::modificationDate ? dateKey(row.modified)
                                                                   : dateKey(row.created));
    }
  }
  if (!descriptor.ascending) {
    for (double& key : keys) key = -key;
  }
  return keys;
}

}  // namespace

std::vector<std::uint32_t> sortedPage(const std::vector<ListedRow>& rows,
                                      const FetchRequest& request) {
  std::vector<std::vector<double>> keys;
  for (const SortDescriptor& descriptor : request.sortDescriptors) {
    keys.push_back(keysOf(rows, descriptor));
  }
  std::vector<Entry> entries(rows.size());
  const bool pinsFirst = keys.size() > 1 && request.sortDescriptors[0].key == SortKey::pinned;
  for (std::uint32_t i = 0; i < rows.size(); ++i) {
    entries[i].index = i;
    if (pinsFirst) {
      // The first key has two values, so one bit of the prefix is enough.
      const bool later = rows[i].pinned == request.sortDescriptors[0].ascending;
      entries[i].prefix = (std::uint64_t{later} << 63) | (ordered(keys[1][i]) >> 1);
    } else if (!keys.empty()) {
      entries[i].prefix = ordered(keys[0][i]);
    }
  }
  const auto decidedByAll = [&](std::uint32_t a, std::uint32_t b) {
    for (const std::vector<double>& key : keys) {
      if (key[a] != key[b]) return key[a] < key[b];
    }
    return rows[a].id > rows[b].id;
  };
  std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
    if (a.prefix != b.prefix) return a.prefix < b.prefix;
    return decidedByAll(a.index, b.index);
  });
  const auto size = static_cast<std::int64_t>(entries.size());
  const std::int64_t begin = std::min(request.fetchOffset, size);
  const std::int64_t end = begin + std::min(request.fetchLimit, size - begin);
  std::vector<std::uint32_t> page;
  page.reserve(static_cast<std::size_t>(end - begin));
  for (std::int64_t i = begin; i < end; ++i) {
    page.push_back(entries[static_cast<std::size_t>(i)].index);
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
  return clause + (clause.empty() ? " ORDER BY s.note DESC" : ", s.note DESC");
}

}  // namespace tavimodel

#include "platform/model/search/index_changes.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "platform/model/search/slice_blocks.h"
#include "platform/text/string_search.h"
#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

using platform::text::containsBytes;
using platform::text::decodeScalar;
using platform::text::isContinuation;
using platform::text::previousScalar;

/// Limit of the part of a text that has changed, in bytes.
constexpr std::size_t mostChanged = 512;

/// The offset `count` scalars before the one that `at` is in, or 0.
std::size_t scalarsBefore(std::string_view text, std::size_t at, std::size_t count) {
  while (at > 0 && at < text.size() && isContinuation(text[at])) --at;
  for (; count > 0 && at > 0; --count) at = previousScalar(text, at);
  return at;
}

/// The offset `count` scalars behind the one that `at` is in, or the text's length.
std::size_t scalarsBehind(std::string_view text, std::size_t at, std::size_t count) {
  while (at < text.size() && isContinuation(text[at])) ++at;
  for (; count > 0 && at < text.size(); --count) at = decodeScalar(text, at).next;
  return at;
}

/// Blocks are compared faster than bytes.
constexpr std::size_t block = 64;

/// How many bytes two texts begin with in common.
std::size_t commonPrefix(std::string_view a, std::string_view b) {
  const std::size_t most = std::min(a.size(), b.size());
  std::size_t same = 0;
  while (same + block <= most && a.substr(same, block) == b.substr(same, block)) same += block;
  while (same < most && a[same] == b[same]) ++same;
  return same;
}

/// How many bytes two texts end with in common.
std::size_t commonSuffix(std::string_view a, std::string_view b) {
  const std::size_t most = std::min(a.size(), b.size());
  a.remove_prefix(a.size() - most);
  b.remove_prefix(b.size() - most);
  std::size_t rest = most;
  while (rest >= block && a.substr(rest - block, block) == b.substr(rest - block, block))
    rest -= block;
  while (rest > 0 && a[rest - 1] == b[rest - 1]) --rest;
  return most - rest;
}

std::vector<Trigram> trigramsOf(std::string_view text) {
  std::vector<Trigram> trigrams;
  forEachTrigram(text, [&](Trigram trigram) { trigrams.push_back(trigram); });
  std::sort(trigrams.begin(), trigrams.end());
  trigrams.erase(std::unique(trigrams.begin(), trigrams.end()), trigrams.end());
  return trigrams;
}

std::vector<Trigram> without(const std::vector<Trigram>& all, const std::vector<Trigram>& some) {
  std::vector<Trigram> rest;
  std::set_difference(all.begin(), all.end(), some.begin(), some.end(), std::back_inserter(rest));
  return rest;
}

}  // namespace

std::optional<TrigramChange> TrigramChange::between(std::string_view before, std::string_view after,
                                                    std::string_view title) {
  const std::size_t head = commonPrefix(before, after);
  const std::size_t tail = commonSuffix(before.substr(head), after.substr(head));
  // A trigram that reaches into the difference has up to two scalars before or behind it.
  constexpr std::size_t reach = trigramLength - 1;
  const auto changed = [&](std::string_view text) {
    const std::size_t begin = scalarsBefore(text, head, reach);
    return text.substr(begin, scalarsBehind(text, text.size() - tail, reach) - begin);
  };
  const std::string_view was = changed(before);
  const std::string_view is = changed(after);
  if (std::max(was.size(), is.size()) > mostChanged) return std::nullopt;
  const std::vector<Trigram> had = trigramsOf(was);
  const std::vector<Trigram> has = trigramsOf(is);
  TrigramChange change{without(has, had), without(had, has)};
  std::erase_if(change.lost, [&](Trigram trigram) {
    const std::string bytes = utf8Of(trigram);
    return containsBytes(after, bytes) || containsBytes(title, bytes);
  });
  return change;
}

void IndexChanges::add(std::int64_t searchRow, const TrigramChange& change) {
  Slice& slice = slices_[searchRow / sliceCapacity];
  const int position = static_cast<int>(searchRow % sliceCapacity);
  slice.notes.add(position);
  for (const Trigram gained : change.gained) positionsOf(slice, gained).gained.add(position);
  for (const Trigram lost : change.lost) positionsOf(slice, lost).lost.add(position);
}

IndexChanges::Positions& IndexChanges::positionsOf(Slice& slice, Trigram trigram) {
  const auto [found, isNew] = slice.trigrams.try_emplace(trigram);
  if (isNew) ++trigrams_;
  return found->second;
}

void IndexChanges::write(sqlite::Connection& connection) {
  trigrams_ = 0;
  for (const auto& [number, slice] : std::exchange(slices_, {})) {
    std::vector<EntryChange> changes;
    changes.reserve(slice.trigrams.size());
    for (const auto& [trigram, positions] : slice.trigrams) {
      changes.push_back({utf8Of(trigram), positions.gained, positions.lost});
    }
    std::sort(changes.begin(), changes.end(),
              [](const EntryChange& a, const EntryChange& b) { return a.key < b.key; });
    if (changeEntries(connection, number, changes)) continue;
    sqlite::Query forget =
        connection.query("UPDATE noteSummary SET searchRow = NULL WHERE searchRow = ?1");
    slice.notes.forEach([&, first = number * sliceCapacity](int position) {
      forget.reset().bind(1, first + position).run();
    });
  }
}

}  // namespace tavimodel

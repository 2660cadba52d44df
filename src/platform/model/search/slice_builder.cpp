#include "platform/model/search/slice_builder.h"

#include <algorithm>
#include <string>

#include "platform/model/search/slice_blocks.h"

namespace tavimodel {
namespace {

/// Limit of new trigrams per note. A note with more is a candidate for every term, so that no text
/// takes much memory.
constexpr std::size_t mostOfText = std::size_t{1} << 16;
/// A slice with this many trigrams counts as full, even if it has room for more notes.
constexpr std::size_t mostOfSlice = std::size_t{1} << 18;
constexpr std::size_t fewestPlaces = std::size_t{1} << 14;

/// Fibonacci hashing: the upper bits of the product are well mixed.
std::size_t hashOf(Trigram trigram) {
  return (trigram * 0x9E3779B97F4A7C15ULL) >> 32;
}

}  // namespace

bool SliceBuilder::isFull() const {
  return notes_ >= sliceCapacity || entries_.size() >= mostOfSlice;
}

void SliceBuilder::addNote(const std::vector<std::string_view>& texts) {
  const int position = addPosition();
  const std::size_t known = entries_.size();
  bool tooMany = false;
  for (const std::string_view text : texts) {
    forEachTrigram(text, [&](Trigram trigram) {
      if (tooMany) return;
      listOf(trigram).add(position);
      tooMany = entries_.size() - known > mostOfText;
    });
  }
  if (tooMany) ofAnything_.add(position);
}

PositionList& SliceBuilder::listOf(std::string_view key) {
  PositionList* list = &ofAnything_;
  forEachTrigram(key, [&](Trigram trigram) { list = &listOf(trigram); });
  return *list;
}

PositionList& SliceBuilder::listOf(Trigram trigram) {
  if (entries_.size() * 2 >= places_.size()) enlarge();
  std::size_t at = hashOf(trigram) & (places_.size() - 1);
  for (; places_[at] != 0; at = (at + 1) & (places_.size() - 1)) {
    Entry& entry = entries_[places_[at] - 1];
    if (entry.trigram == trigram) return entry.positions;
  }
  entries_.push_back({trigram, {}});
  places_[at] = static_cast<std::uint32_t>(entries_.size());
  return entries_.back().positions;
}

void SliceBuilder::enlarge() {
  places_.assign(std::max(fewestPlaces, places_.size() * 2), 0);
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    std::size_t at = hashOf(entries_[i].trigram) & (places_.size() - 1);
    while (places_[at] != 0) at = (at + 1) & (places_.size() - 1);
    places_[at] = static_cast<std::uint32_t>(i + 1);
  }
}

void SliceBuilder::write(sqlite::Connection& connection, std::int64_t slice) {
  std::vector<const Entry*> sorted;
  sorted.reserve(entries_.size());
  for (const Entry& entry : entries_) sorted.push_back(&entry);
  std::sort(sorted.begin(), sorted.end(),
            [](const Entry* a, const Entry* b) { return a->trigram < b->trigram; });
  SliceWriter writer(connection, slice);
  if (!ofAnything_.bytes().empty()) writer.add({}, ofAnything_.bytes());
  for (const Entry* entry : sorted) writer.add(utf8Of(entry->trigram), entry->positions.bytes());
  writer.finish(notes_);
}

}  // namespace tavimodel

#include "platform/model/search/slice_builder.h"

#include <algorithm>
#include <optional>
#include <string>

#include "platform/model/search/slice_blocks.h"

namespace tavimodel {
namespace {

/// Limit of new trigrams per note. A note with more is a candidate for every term, so that no text
/// takes much memory.
constexpr std::size_t mostOfText = std::size_t{1} << 16;
/// A slice with this many trigrams counts as full, even if it has room for more notes.
constexpr std::size_t mostOfSlice = std::size_t{1} << 18;
/// Memory is taken for this number of trigrams at first.
constexpr std::size_t usualTrigrams = std::size_t{1} << 13;
constexpr Trigram noTrigram = ~Trigram{0};

/// The trigram of an entry; absent for that of notes that are candidates for every term.
std::optional<Trigram> trigramOf(std::string_view key) {
  std::optional<Trigram> trigram;
  forEachTrigram(key, [&](Trigram only) { trigram = only; });
  return trigram;
}

}  // namespace

bool SliceBuilder::isFull() const {
  return notes_ >= sliceCapacity || trigrams_.size() + recent_.size() >= mostOfSlice;
}

void SliceBuilder::addNote(const std::vector<std::string_view>& texts) {
  const int position = addPosition();
  const int group = position / RecentTrigrams::notes;
  const std::uint64_t bit = std::uint64_t{1} << (position % RecentTrigrams::notes);
  std::size_t left = mostOfText;
  for (const std::string_view text : texts) {
    forEachTrigram(
        text,
        [&](PackedTrigram trigram) {
          if (left > 0 && recent_.add(trigram, bit)) --left;
        },
        [&](Trigram trigram) {
          if (left == 0) return;
          const std::size_t before = trigrams_.size();
          addWord(group, placeOf(trigram), bit);
          left -= trigrams_.size() - before;
        });
  }
  if (left == 0) ofAnything_.add(position);
  if (notes_ % RecentTrigrams::notes == 0) addRecent();
}

void SliceBuilder::load(sqlite::Connection& connection, std::int64_t slice, int notes) {
  notes_ = notes;
  forEachEntry(connection, slice, [&](std::string_view key, std::string_view positions) {
    const PositionSet set = PositionSet::decoded(positions);
    const std::optional<Trigram> trigram = trigramOf(key);
    if (!trigram) {
      ofAnything_ |= set;
      return;
    }
    const std::size_t place = placeOf(*trigram);
    for (int group = 0; group * RecentTrigrams::notes < notes; ++group) {
      addWord(group, place, set.words()[static_cast<std::size_t>(group)]);
    }
  });
}

void SliceBuilder::addRecent() {
  const int group = (notes_ - 1) / RecentTrigrams::notes;
  recent_.drain(
      [&](Trigram trigram, std::uint64_t notes) { addWord(group, placeOf(trigram), notes); });
}

void SliceBuilder::addWord(int group, std::size_t place, std::uint64_t notes) {
  std::vector<std::uint64_t>& words = words_[static_cast<std::size_t>(group)];
  if (place >= words.size()) words.resize(trigrams_.size());
  words[place] |= notes;
}

PositionSet SliceBuilder::positionsOf(std::size_t place) const {
  PositionSet positions;
  for (std::size_t group = 0; group < words_.size(); ++group) {
    if (place < words_[group].size()) positions.words()[group] = words_[group][place];
  }
  return positions;
}

void SliceBuilder::addEntry(std::string_view key, std::string_view positions, const Moves& moved) {
  const std::optional<Trigram> trigram = trigramOf(key);
  std::optional<std::size_t> place;
  PositionSet::forEachOf(positions, [&](int before) {
    const int position = moved[static_cast<std::size_t>(before)];
    if (position < 0) return;
    if (!trigram) return ofAnything_.add(position);
    if (!place) place = placeOf(*trigram);
    addWord(position / RecentTrigrams::notes, *place,
            std::uint64_t{1} << (position % RecentTrigrams::notes));
  });
}

std::size_t SliceBuilder::placeOf(Trigram trigram) {
  if (slots_.empty()) enlarge();
  Slot& slot = slots_[slotOf(trigram)];
  return slot.trigram == trigram ? slot.place : addTrigram(slot, trigram);
}

/// The trigram's slot, or the free one where it belongs.
std::size_t SliceBuilder::slotOf(Trigram trigram) const {
  // Fibonacci hashing: the upper bits of the product are well mixed.
  std::size_t at = (trigram * 0x9E3779B97F4A7C15ULL) >> 32;
  for (at &= slots_.size() - 1;; at = (at + 1) & (slots_.size() - 1)) {
    if (slots_[at].trigram == trigram || slots_[at].trigram == noTrigram) return at;
  }
}

std::size_t SliceBuilder::addTrigram(Slot& slot, Trigram trigram) {
  const auto place = static_cast<std::uint32_t>(trigrams_.size());
  slot = {trigram, place};
  trigrams_.push_back(trigram);
  if (trigrams_.size() * 2 > slots_.size()) enlarge();
  return place;
}

void SliceBuilder::enlarge() {
  slots_.assign(std::max(2 * usualTrigrams, slots_.size() * 2), {noTrigram, 0});
  for (std::uint32_t place = 0; place < trigrams_.size(); ++place) {
    slots_[slotOf(trigrams_[place])] = {trigrams_[place], place};
  }
}

void SliceBuilder::clear() {
  notes_ = 0;
  ofAnything_ = {};
  trigrams_.clear();
  for (std::vector<std::uint64_t>& words : words_) words.clear();
  std::fill(slots_.begin(), slots_.end(), Slot{noTrigram, 0});
}

void SliceBuilder::write(sqlite::Connection& connection, std::int64_t slice) {
  addRecent();
  std::vector<Slot> sorted;
  sorted.reserve(trigrams_.size());
  for (std::uint32_t place = 0; place < trigrams_.size(); ++place) {
    sorted.push_back({trigrams_[place], place});
  }
  std::sort(sorted.begin(), sorted.end(),
            [](const Slot& a, const Slot& b) { return a.trigram < b.trigram; });
  SliceWriter writer(connection, slice);
  if (!ofAnything_.isEmpty()) writer.add({}, PositionSet::Encoding(ofAnything_).bytes());
  for (const auto& [trigram, place] : sorted) {
    writer.add(utf8Of(trigram), PositionSet::Encoding(positionsOf(place)).bytes());
  }
  writer.finish(notes_);
  clear();
}

}  // namespace tavimodel

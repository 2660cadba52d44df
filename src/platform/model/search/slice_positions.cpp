#include "platform/model/search/slice_positions.h"

#include <algorithm>
#include <numeric>

namespace tavimodel {

PositionSet PositionSet::all() {
  PositionSet set;
  set.words_.fill(~std::uint64_t{0});
  return set;
}

PositionSet PositionSet::first(int count) {
  PositionSet set;
  for (int position = 0; position < count; ++position) set.add(position);
  return set;
}

PositionSet PositionSet::ofBitmap(std::string_view bytes) {
  PositionSet set;
  for (std::size_t i = 0; i < bitmapSize; ++i) {
    set.words_[i / 8] |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (i % 8 * 8);
  }
  return set;
}

PositionSet PositionSet::decoded(std::string_view bytes) {
  if (bytes.size() == bitmapSize) return ofBitmap(bytes);
  PositionSet set;
  forEachOfGaps(bytes, [&](int position) { set.add(position); });
  return set;
}

bool PositionSet::isEmpty() const {
  return std::all_of(words_.begin(), words_.end(), [](std::uint64_t word) { return word == 0; });
}

int PositionSet::count() const {
  return std::accumulate(words_.begin(), words_.end(), 0,
                         [](int sum, std::uint64_t word) { return sum + std::popcount(word); });
}

PositionSet& PositionSet::operator&=(const PositionSet& other) {
  for (std::size_t i = 0; i < words_.size(); ++i) words_[i] &= other.words_[i];
  return *this;
}

PositionSet& PositionSet::operator|=(const PositionSet& other) {
  for (std::size_t i = 0; i < words_.size(); ++i) words_[i] |= other.words_[i];
  return *this;
}

PositionSet& PositionSet::operator-=(const PositionSet& other) {
  for (std::size_t i = 0; i < words_.size(); ++i) words_[i] &= ~other.words_[i];
  return *this;
}

PositionSet::Encoding::Encoding(const PositionSet& set) {
  if (!writeGaps(set)) writeBitmap(set);
}

/// Returns false if the gaps take as many bytes as a bitmap.
bool PositionSet::Encoding::writeGaps(const PositionSet& set) {
  int next = 0;
  for (std::size_t i = 0; i < set.words_.size(); ++i) {
    for (std::uint64_t rest = set.words_[i]; rest != 0; rest &= rest - 1) {
      const int position = static_cast<int>(i * 64) + std::countr_zero(rest);
      const int gap = position - next;
      next = position + 1;
      const std::size_t width = gap < 0x80 ? 1 : 2;
      if (size_ + width >= bitmapSize) return false;
      if (width == 2) bytes_[size_++] = static_cast<char>((gap & 0x7F) | 0x80);
      bytes_[size_++] = static_cast<char>(width == 2 ? gap >> 7 : gap);
    }
  }
  return true;
}

void PositionSet::Encoding::writeBitmap(const PositionSet& set) {
  size_ = bitmapSize;
  for (std::size_t i = 0; i < bitmapSize; ++i) {
    bytes_[i] = static_cast<char>(set.words_[i / 8] >> (i % 8 * 8) & 0xFF);
  }
}

}  // namespace tavimodel

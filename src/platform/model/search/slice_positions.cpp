#include "platform/model/search/slice_positions.h"

#include <algorithm>
#include <numeric>

namespace tavimodel {
namespace {

constexpr std::size_t bitmapSize = sliceCapacity / 8;

}  // namespace

PositionSet PositionSet::all() {
  PositionSet set;
  set.words_.fill(~std::uint64_t{0});
  return set;
}

PositionSet PositionSet::decoded(std::string_view bytes) {
  PositionSet set;
  if (bytes.size() == bitmapSize) {
    for (std::size_t i = 0; i < bitmapSize; ++i) {
      set.words_[i / 8] |= std::uint64_t{static_cast<unsigned char>(bytes[i])} << (i % 8 * 8);
    }
    return set;
  }
  int position = -1;
  int gap = 0;
  int shift = 0;
  for (const char byte : bytes) {
    gap |= (byte & 0x7F) << shift;
    shift = 7;
    if ((byte & 0x80) != 0) continue;
    position += gap + 1;
    if (position >= sliceCapacity) break;
    set.add(position);
    gap = shift = 0;
  }
  return set;
}

std::string PositionSet::encoded() const {
  PositionList list;
  forEach([&](int position) { list.add(position); });
  return list.bytes();
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

void PositionList::addWord(int first, std::uint64_t word) {
  for (; word != 0 && bytes_.size() < bitmapSize; word &= word - 1) {
    append(first + std::countr_zero(word));
  }
  if (word == 0) return;
  last_ = first + 63 - std::countl_zero(word);
  for (std::size_t at = static_cast<std::size_t>(first) / 8; word != 0; word >>= 8, ++at) {
    bytes_[at] |= static_cast<char>(word & 0xFF);
  }
}

void PositionList::append(int position) {
  const auto setBit = [this](int at) {
    bytes_[static_cast<std::size_t>(at) / 8] |= static_cast<char>(1 << (at % 8));
  };
  const int gap = position - last_ - 1;
  last_ = position;
  if (bytes_.size() == bitmapSize) return setBit(position);
  const std::size_t width = gap < 0x80 ? 1 : 2;
  if (bytes_.size() + width >= bitmapSize) {
    const PositionSet before = PositionSet::decoded(bytes_);
    bytes_.assign(bitmapSize, '\0');
    before.forEach(setBit);
    return setBit(position);
  }
  if (width == 2) bytes_ += static_cast<char>((gap & 0x7F) | 0x80);
  bytes_ += static_cast<char>(width == 2 ? gap >> 7 : gap);
}

}  // namespace tavimodel

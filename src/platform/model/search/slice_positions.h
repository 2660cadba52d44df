#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavimodel {

/// The maximum number of notes in a slice of the search index. Positions count from 0.
constexpr int sliceCapacity = 1024;

/// A set of positions of notes in a slice.
class PositionSet {
 public:
  class Encoding;

  static PositionSet all();
  static PositionSet first(int count);
  /// Decodes the bytes of an Encoding. Other bytes give an unspecified set.
  static PositionSet decoded(std::string_view bytes);
  /// Calls `visit` with each position of an Encoding, ascending.
  template <class Visit>
  static void forEachOf(std::string_view bytes, const Visit& visit);

  void add(int position) { word(position) |= bit(position); }
  bool has(int position) const { return (words_[index(position)] & bit(position)) != 0; }
  bool isEmpty() const;
  int count() const;
  PositionSet& operator&=(const PositionSet& other);
  PositionSet& operator|=(const PositionSet& other);
  PositionSet& operator-=(const PositionSet& other);
  bool operator==(const PositionSet&) const = default;

  using Words = std::array<std::uint64_t, sliceCapacity / 64>;
  /// The bits of the positions, the first one in the lowest bit of the first word.
  const Words& words() const { return words_; }
  Words& words() { return words_; }

  /// Calls `visit` with each position, ascending.
  template <class Visit>
  void forEach(const Visit& visit) const {
    for (std::size_t i = 0; i < words_.size(); ++i) {
      for (std::uint64_t rest = words_[i]; rest != 0; rest &= rest - 1) {
        visit(static_cast<int>(i * 64) + std::countr_zero(rest));
      }
    }
  }

 private:
  static std::size_t index(int position) { return static_cast<std::size_t>(position) / 64; }
  static std::uint64_t bit(int position) { return std::uint64_t{1} << (position % 64); }
  std::uint64_t& word(int position) { return words_[index(position)]; }

  static constexpr std::size_t bitmapSize = sliceCapacity / 8;  ///< bytes
  static PositionSet ofBitmap(std::string_view bytes);
  template <class Visit>
  static void forEachOfGaps(std::string_view bytes, const Visit& visit);

  Words words_{};
};

/// A set in the database's encoding: the gaps between positions as LEB128 numbers, or, if these
/// would take as many bytes, a bitmap of 128 bytes in which the lowest bit of the first byte is
/// position 0.
class PositionSet::Encoding {
 public:
  explicit Encoding(const PositionSet& set);
  std::string_view bytes() const { return {bytes_.data(), size_}; }

 private:
  bool writeGaps(const PositionSet& set);
  void writeBitmap(const PositionSet& set);

  std::array<char, bitmapSize> bytes_;
  std::size_t size_ = 0;
};

template <class Visit>
void PositionSet::forEachOf(std::string_view bytes, const Visit& visit) {
  if (bytes.size() == bitmapSize) {
    ofBitmap(bytes).forEach(visit);
  } else {
    forEachOfGaps(bytes, visit);
  }
}

template <class Visit>
void PositionSet::forEachOfGaps(std::string_view bytes, const Visit& visit) {
  int position = -1;
  int gap = 0;
  int shift = 0;
  for (const char byte : bytes) {
    gap |= (byte & 0x7F) << shift;
    shift = 7;
    if ((byte & 0x80) != 0) continue;
    position += gap + 1;
    if (position >= sliceCapacity) break;
    visit(position);
    gap = shift = 0;
  }
}

}  // namespace tavimodel

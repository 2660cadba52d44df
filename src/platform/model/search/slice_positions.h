#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tavimodel {

/// Notes in a slice of the search index, at most. Their positions count from 0.
constexpr int sliceCapacity = 1024;

/// A set of positions.
class PositionSet {
 public:
  static PositionSet all();
  /// Reads what PositionList or `encoded` has written. Bytes of any other kind give some set.
  static PositionSet decoded(std::string_view bytes);
  std::string encoded() const;

  void add(int position) { word(position) |= bit(position); }
  bool has(int position) const { return (words_[index(position)] & bit(position)) != 0; }
  bool isEmpty() const;
  int count() const;
  PositionSet& operator&=(const PositionSet& other);
  PositionSet& operator|=(const PositionSet& other);
  bool operator==(const PositionSet&) const = default;

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
  friend class PositionList;
  static std::size_t index(int position) { return static_cast<std::size_t>(position) / 64; }
  static std::uint64_t bit(int position) { return std::uint64_t{1} << (position % 64); }
  std::uint64_t& word(int position) { return words_[index(position)]; }

  std::array<std::uint64_t, sliceCapacity / 64> words_{};
};

/// Positions as the database has them, built up in ascending order: the gaps between them, as
/// LEB128 numbers, or a bitmap of 128 bytes (the lowest bit of the first byte is position 0) where
/// the gaps would take as many.
class PositionList {
 public:
  /// `position` is not below the last one; the same one again changes nothing.
  void add(int position) {
    if (position != last_) append(position);
  }
  /// Adds up to 64 positions beyond the last one: `first`, a multiple of 64, for the word's lowest
  /// bit, and so on.
  void addWord(int first, std::uint64_t word);
  const std::string& bytes() const { return bytes_; }

 private:
  void append(int position);

  int last_ = -1;
  std::string bytes_;
};

}  // namespace tavimodel

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Finding the few bytes of a text that need care, eight bytes at a time.
namespace tavi {

/// A set of bytes: those below `limit`, and `others`.
template <std::uint8_t limit, char... others>
struct ByteSet {
  static_assert(limit <= 0x80);

  static constexpr bool contains(char byte) {
    return static_cast<std::uint8_t>(byte) < limit || ((byte == others) || ...);
  }

  /// The length of the run at the start of `text` that holds none of the set.
  static std::size_t lengthBefore(std::string_view text) {
    static_assert(std::endian::native == std::endian::little);
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
      std::uint64_t word;
      std::memcpy(&word, text.data() + at, 8);
      if (const std::uint64_t found = marked(word))
        return at + static_cast<std::size_t>(std::countr_zero(found)) / 8;
    }
    while (at < text.size() && !contains(text[at])) ++at;
    return at;
  }

 private:
  static constexpr std::uint64_t ones = 0x0101010101010101;

  // Anderson, "Bit Twiddling Hacks", hasless: the high bit of each byte below `bound` is set, and
  // maybe of bytes above the first such byte, so the lowest mark is always right.
  static constexpr std::uint64_t below(std::uint64_t word, std::uint8_t bound) {
    return (word - ones * bound) & ~word & (ones * 0x80);
  }
  static constexpr std::uint64_t marked(std::uint64_t word) {
    return (below(word, limit) | ... | below(word ^ (ones * static_cast<std::uint8_t>(others)), 1));
  }
};

}  // namespace tavi

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Scans a text for the few bytes that must be escaped or checked, sixteen bytes at a time.
namespace tavi {

/// A set of bytes, known at compile time: all bytes below `limit` (at most 0x80), and `others`.
template <std::uint8_t limit, char... others>
struct ByteSet {
  static_assert(limit <= 0x80);

  static constexpr bool contains(char byte) {
    return static_cast<std::uint8_t>(byte) < limit || ((byte == others) || ...);
  }

  /// The length in bytes of the longest prefix of `text` without a byte of the set.
  static std::size_t lengthBefore(std::string_view text) {
    const char* const data = text.data();
    const std::size_t size = text.size();
    std::size_t at = 0;
    while (at + 16 <= size && !isIn16(data + at)) at += 16;
    // The last 16 bytes overlap those looked at.
    if (at > 0 && at + 16 > size && !isIn16(data + size - 16)) return size;
    for (; at + 8 <= size; at += 8) {
      if (const std::uint64_t found = marked(data + at))
        return at + static_cast<std::size_t>(std::countr_zero(found)) / 8;
    }
    while (at < size && !contains(data[at])) ++at;
    return at;
  }

 private:
  static constexpr std::uint64_t ones = 0x0101010101010101;

  static bool isIn16(const char* bytes) {
    using Vector = std::uint8_t __attribute__((vector_size(16)));
    Vector vector;
    std::memcpy(&vector, bytes, sizeof vector);
    auto found = vector < limit;
    ((found |= vector == static_cast<std::uint8_t>(others)), ...);
    std::uint64_t halves[2];
    std::memcpy(halves, &found, sizeof halves);
    return (halves[0] | halves[1]) != 0;
  }

  // Anderson, "Bit Twiddling Hacks", hasless: sets the high bit of each byte below `bound`. A
  // borrow may also mark bytes above the first such byte, so only the lowest mark can be trusted.
  static constexpr std::uint64_t below(std::uint64_t word, std::uint8_t bound) {
    return (word - ones * bound) & ~word & (ones * 0x80);
  }
  static std::uint64_t marked(const char* bytes) {
    static_assert(std::endian::native == std::endian::little);
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return (below(word, limit) | ... | below(word ^ (ones * static_cast<std::uint8_t>(others)), 1));
  }
};

}  // namespace tavi

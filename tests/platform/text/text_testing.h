#pragma once

#include <cstdio>
#include <ostream>
#include <random>
#include <span>
#include <string>

#include "platform/text/utf8.h"

namespace platform::text {

inline void PrintTo(const ByteRange& range, std::ostream* out) {
  *out << '[' << range.begin << ',' << range.end << ')';
}

inline std::string scalarName(char32_t scalar) {
  char name[16];
  std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(scalar));
  return name;
}

/// Calls `check` with every Unicode scalar value, in order.
template <class Check>
void forEveryScalar(Check check) {
  for (char32_t scalar = 0; scalar <= 0x10FFFF; ++scalar) {
    if (scalar < 0xD800 || scalar > 0xDFFF) check(scalar);
  }
}

/// Generates random texts over an alphabet of scalars; the same seed gives the same texts.
class RandomText {
 public:
  RandomText(std::span<const char32_t> alphabet, unsigned seed)
      : alphabet_(alphabet), engine_(seed) {}

  std::string ofLengthUpTo(std::size_t scalars) {
    std::string result;
    for (std::size_t n = below(scalars + 1); n > 0; --n) {
      appendScalar(result, alphabet_[below(alphabet_.size())]);
    }
    return result;
  }

  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(engine_);
  }

 private:
  std::span<const char32_t> alphabet_;
  std::mt19937 engine_;
};

/// Scalars with unusual case mappings, normalisation or boundaries.
inline constexpr char32_t kNastyAlphabet[] = {
    U'a',    U'A',    U's',    U'S',   U'e',   U'i',   U'I',   U'k',    U'f',    U'l',    U' ',
    U'\r',   U'\n',   U';',    U'=',   0xE9,   0xC9,   0xDF,   0x1E9E,  0x17F,   0x212A,  0x212B,
    0xE5,    0x130,   0x131,   0x149,  0x1F0,  0x1E96, 0x37E,  0x1FEF,  0x2000,  0x2260,  0xFB00,
    0xFB03,  0xFB05,  0x3B1,   0x3B9,  0x3C3,  0x3C2,  0x3A3,  0x1FB3,  0x1FB4,  0x1FB7,  0x1F80,
    0x390,   0x300,   0x301,   0x303,  0x307,  0x308,  0x323,  0x327,   0x331,   0x338,   0x345,
    0x344,   0x35C,   0x20DD,  0x5B0,  0x64B,  0x93F,  0x9BE,  0x9C7,   0x9CB,   0xE33,   0xE48,
    0x3099,  0x304B,  0x304C,  0xAC00, 0xAC01, 0x1100, 0x1161, 0x11A8,  0x1175,  0x4E00,  0x8C48,
    0xF900,  0x200B,  0x200C,  0x200D, 0xAD,   0xFE0F, 0x2764, 0x1F469, 0x1F3FD, 0x1F1E9, 0x1F1EA,
    0x1D160, 0x1D15F, 0x10400, 0x2460, 0x600,  0xFFFD, 0xA9};

}  // namespace platform::text

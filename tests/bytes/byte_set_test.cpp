#include "bytes/byte_set.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tavi {
namespace {

TEST(ByteSet, FindsTheFirstByteWhereverItIs) {
  using Some = ByteSet<0x20, '"', '\\', '\xff'>;
  std::mt19937 generate(1);
  std::uniform_int_distribution<int> anyByte(-128, 127);
  for (std::size_t length = 0; length < 70; ++length) {
    for (int round = 0; round < 40; ++round) {
      std::string text(length, 'a');
      // Few of the bytes in one text, all kinds of bytes in another.
      for (char& byte : text) {
        const char other = static_cast<char>(anyByte(generate));
        if (!Some::contains(other) || round % 8 == 0) byte = other;
      }
      if (length > 0 && round % 2 == 0) text[generate() % length] = "\"\\\xff\x1f\n"[round % 5];
      std::size_t expected = 0;
      while (expected < length && !Some::contains(text[expected])) ++expected;
      ASSERT_EQ(Some::lengthBefore(text), expected) << length;
    }
  }
}

}  // namespace
}  // namespace tavi

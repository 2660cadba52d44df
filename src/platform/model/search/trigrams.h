#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/text/utf8.h"

namespace tavimodel {

/// Three consecutive Unicode scalars of a folded text, 21 bits each, the first in the highest bits.
/// The numeric order is that of the code points, and of the scalars' UTF-8.
using Trigram = std::uint64_t;

constexpr std::size_t trigramLength = 3;

/// The scalars of which most folded texts mostly consist: their trigrams can be packed in 18 bits,
/// with the indexes of the scalars in this string, the first in the highest bits. The most frequent
/// ones come first, so that their trigrams are close together in a table.
constexpr std::string_view commonScalars =
    " etaoinsrhldcumfpgwybvkxjzq\n.,-0123456789'\"():;!?/#*_`[]&+=@%$<>";
constexpr unsigned commonBits = 6;
static_assert(commonScalars.size() == 1 << commonBits);
using PackedTrigram = std::uint32_t;
constexpr PackedTrigram packedTrigrams = PackedTrigram{1} << trigramLength * commonBits;

/// The index in `commonScalars` for each byte; its size for others.
constexpr auto commonIndexes = [] {
  std::array<std::uint8_t, 256> indexes{};
  indexes.fill(commonScalars.size());
  for (std::size_t i = 0; i < commonScalars.size(); ++i) {
    indexes[static_cast<unsigned char>(commonScalars[i])] = static_cast<std::uint8_t>(i);
  }
  return indexes;
}();

constexpr Trigram unpacked(PackedTrigram packed) {
  Trigram trigram = 0;
  for (unsigned shift = trigramLength * commonBits; shift > 0; shift -= commonBits) {
    const auto index = packed >> (shift - commonBits) & (commonScalars.size() - 1);
    trigram = trigram << 21 | static_cast<unsigned char>(commonScalars[index]);
  }
  return trigram;
}

/// Calls `visitPacked` with each trigram of common scalars, and `visit` with each other trigram of
/// the text, in order, including repeated ones.
template <class VisitPacked, class Visit>
void forEachTrigram(std::string_view text, const VisitPacked& visitPacked, const Visit& visit) {
  constexpr Trigram lastTwo = (Trigram{1} << 42) - 1;
  Trigram trigram = 0;  // not kept up to date while trigrams are packed
  std::size_t scalars = 0;
  PackedTrigram packed = 0;
  std::size_t common = 0;  // the number of consecutive common scalars up to `at`
  for (std::size_t at = 0; at < text.size();) {
    const std::uint8_t index = commonIndexes[static_cast<unsigned char>(text[at])];
    if (index < commonScalars.size()) {
      packed = (packed << commonBits | index) & (packedTrigrams - 1);
      if (++common >= trigramLength) {
        visitPacked(packed);
        ++at;
        continue;
      }
    } else {
      if (common >= trigramLength) {
        trigram = unpacked(packed);
        scalars = trigramLength;
      }
      common = 0;
    }
    const auto scalar = platform::text::decodeScalar(text, at);
    trigram = (trigram & lastTwo) << 21 | scalar.value;
    if (++scalars >= trigramLength) visit(trigram);
    at = scalar.next;
  }
}

/// Calls `visit` with each trigram of the text in order, including repeated ones.
template <class Visit>
void forEachTrigram(std::string_view text, const Visit& visit) {
  forEachTrigram(
      text, [&](PackedTrigram trigram) { visit(unpacked(trigram)); }, visit);
}

/// Encodes the trigram's scalars in UTF-8.
std::string utf8Of(Trigram trigram);

}  // namespace tavimodel

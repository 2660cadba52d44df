#pragma once

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

/// A trigram of ASCII, packed: 7 bits for each scalar, the first in the highest bits.
using ASCIITrigram = std::uint32_t;

constexpr ASCIITrigram mostASCIITrigram = (ASCIITrigram{1} << 21) - 1;

constexpr Trigram unpacked(ASCIITrigram trigram) {
  constexpr Trigram scalar = 0x7F;
  return (trigram >> 14 & scalar) << 42 | (trigram >> 7 & scalar) << 21 | (trigram & scalar);
}

/// Calls `visitASCII` with each trigram of three ASCII scalars, and `visit` with each other trigram
/// of the text, in order, including repeated ones.
template <class VisitASCII, class Visit>
void forEachTrigram(std::string_view text, const VisitASCII& visitASCII, const Visit& visit) {
  constexpr Trigram lastTwo = (Trigram{1} << 42) - 1;
  ASCIITrigram ascii = 0;
  std::size_t run = 0;  // the number of ASCII scalars before `at` without another one between them
  Trigram trigram = 0;  // of the last scalars; not kept up to date within a run
  std::size_t scalars = 0;
  for (std::size_t at = 0; at < text.size(); ++scalars) {
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80) {
      ++at;
      ascii = (ascii << 7 | byte) & mostASCIITrigram;
      if (++run >= trigramLength) {
        visitASCII(ascii);
        continue;
      }
      trigram = (trigram & lastTwo) << 21 | byte;
    } else {
      if (run >= trigramLength) trigram = unpacked(ascii);
      run = 0;
      const auto scalar = platform::text::decodeMultibyteScalar(text, at);
      trigram = (trigram & lastTwo) << 21 | scalar.value;
      at = scalar.next;
    }
    if (scalars + 1 >= trigramLength) visit(trigram);
  }
}

/// Calls `visit` with each trigram of the text in order, including repeated ones.
template <class Visit>
void forEachTrigram(std::string_view text, const Visit& visit) {
  forEachTrigram(
      text, [&](ASCIITrigram trigram) { visit(unpacked(trigram)); }, visit);
}

/// Encodes the trigram's scalars in UTF-8.
std::string utf8Of(Trigram trigram);

}  // namespace tavimodel

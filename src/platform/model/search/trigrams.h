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
  Trigram trigram = 0;
  std::size_t scalars = 0;
  const auto add = [&](char32_t scalar) {
    constexpr Trigram lastTwo = (Trigram{1} << 42) - 1;
    trigram = (trigram & lastTwo) << 21 | scalar;
    if (++scalars >= trigramLength) visit(trigram);
  };
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view run =
        text.substr(at, platform::text::asciiPrefixLength(text.substr(at)));
    ASCIITrigram ascii = 0;
    for (std::size_t i = 0; i < run.size(); ++i) {
      const auto scalar = static_cast<unsigned char>(run[i]);
      ascii = (ascii << 7 | scalar) & mostASCIITrigram;
      if (i + 1 >= trigramLength) {
        visitASCII(ascii);
      } else {
        add(scalar);
      }
    }
    if (run.size() >= trigramLength) {
      trigram = unpacked(ascii);
      scalars = trigramLength;
    }
    for (at += run.size(); at < text.size() && static_cast<unsigned char>(text[at]) >= 0x80;) {
      const auto scalar = platform::text::decodeMultibyteScalar(text, at);
      add(scalar.value);
      at = scalar.next;
    }
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

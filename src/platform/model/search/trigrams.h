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

/// Calls `visit` with each trigram of the text in order, including repeated ones.
template <class Visit>
void forEachTrigram(std::string_view text, const Visit& visit) {
  constexpr Trigram lastTwo = (Trigram{1} << 42) - 1;
  Trigram trigram = 0;
  std::size_t scalars = 0;
  for (std::size_t at = 0; at < text.size();) {
    const auto scalar = platform::text::decodeScalar(text, at);
    trigram = (trigram & lastTwo) << 21 | scalar.value;
    if (++scalars >= trigramLength) visit(trigram);
    at = scalar.next;
  }
}

/// Encodes the trigram's scalars in UTF-8.
std::string utf8Of(Trigram trigram);

}  // namespace tavimodel

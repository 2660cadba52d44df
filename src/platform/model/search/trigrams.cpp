#include "platform/model/search/trigrams.h"

namespace tavimodel {

std::string utf8Of(Trigram trigram) {
  constexpr Trigram scalarMask = (Trigram{1} << 21) - 1;
  std::string bytes;
  for (int shift = 42; shift >= 0; shift -= 21) {
    platform::text::appendScalar(bytes, static_cast<char32_t>(trigram >> shift & scalarMask));
  }
  return bytes;
}

}  // namespace tavimodel

#include "platform/text/byte_scan.h"

#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace platform::text {
namespace {

constexpr std::size_t kBlock = 16;

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// How common a byte is in texts; 0 for all bytes except letters and the blank.
std::size_t commonness(char c) {
  constexpr std::string_view kRareFirst = "\nzqjxkvbywgpfmucdlhrsnioate ";
  const std::size_t place = kRareFirst.find(c);
  return place == std::string_view::npos ? 0 : place + 1;
}

/// A bit mask of the sixteen positions at which both probes match.
unsigned candidatesIn(const char* firstBlock, BytePattern::Probe first, const char* secondBlock,
                      BytePattern::Probe second) {
#ifdef __SSE2__
  const auto fits = [](const char* bytes, BytePattern::Probe probe) {
    const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    return _mm_cmpeq_epi8(_mm_or_si128(sixteen, _mm_set1_epi8(probe.mask)),
                          _mm_set1_epi8(probe.byte));
  };
  return static_cast<unsigned>(
      _mm_movemask_epi8(_mm_and_si128(fits(firstBlock, first), fits(secondBlock, second))));
#else
  unsigned candidates = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const bool both = first.fits(firstBlock[i]) && second.fits(secondBlock[i]);
    candidates |= static_cast<unsigned>(both) << i;
  }
  return candidates;
#endif
}

}  // namespace

BytePattern::BytePattern(std::string_view bytes, bool ignoreCase)
    : bytes_(bytes), mask_(bytes.size(), '\0') {
  for (std::size_t i = 0; i < bytes.size() && ignoreCase; ++i) {
    if (!isLetter(bytes[i])) continue;
    mask_[i] = 0x20;
    bytes_[i] = static_cast<char>(bytes[i] | 0x20);
  }
  for (std::size_t i = 1; i < bytes_.size(); ++i) {
    if (commonness(bytes_[i]) < commonness(bytes_[rarest_])) {
      secondRarest_ = rarest_;
      rarest_ = i;
    } else if (secondRarest_ == rarest_ ||
               commonness(bytes_[i]) < commonness(bytes_[secondRarest_])) {
      secondRarest_ = i;
    }
  }
}

std::optional<std::size_t> ByteScan::next() {
  if (gaveUp_ || text_.size() < pattern_.size()) return std::nullopt;
  const std::size_t places =
      text_.size() - (pattern_.size() - 1);  // the number of offsets at which a match could begin
  // Local copies, which stay in registers; the compiler must assume that char pointers alias
  // members.
  const BytePattern::Probe first = pattern_.probe(pattern_.rarest_);
  const BytePattern::Probe second = pattern_.probe(pattern_.secondRarest_);
  const char* const firstBytes = text_.data() + pattern_.rarest_;
  const char* const secondBytes = text_.data() + pattern_.secondRarest_;
  const auto candidatesAt = [&](std::size_t base) {
    return candidatesIn(firstBytes + base, first, secondBytes + base, second);
  };
  std::size_t base = position_;
  for (; base + kBlock <= places; base += kBlock) {
    const unsigned found = candidatesAt(base);
    if (found == 0) continue;
    if (const auto hit = nextAmong(found, base); hit || gaveUp_) return hit;
  }
  position_ = places;
  if (base < places && places >= kBlock) {
    // The rest is shorter than a block: compares the last sixteen positions, and ignores those
    // already done.
    const std::size_t last = places - kBlock;
    const std::size_t done = base - last;
    return nextAmong(candidatesAt(last) >> done << done, last);
  }
  for (; base < places; ++base) {
    if (const auto hit = nextAmong(1, base); hit || gaveUp_) return hit;
  }
  return std::nullopt;
}

std::optional<std::size_t> ByteScan::nextAmong(unsigned candidates, std::size_t base) {
  for (; candidates != 0; candidates &= candidates - 1) {
    const std::size_t place = base + static_cast<std::size_t>(std::countr_zero(candidates));
    // Ordinary texts need at most a few comparisons per byte.
    if (effort_ > 16 * (place - from_) + 4096) {
      gaveUp_ = true;
      return std::nullopt;
    }
    if (!fitsAt(place)) continue;
    position_ = place + 1;
    return place;
  }
  return std::nullopt;
}

bool ByteScan::fitsAt(std::size_t position) {
  const char* bytes = text_.data() + position;
  std::size_t i = 0;
  while (i < pattern_.size() && pattern_.probe(i).fits(bytes[i])) ++i;
  effort_ += i;
  return i == pattern_.size();
}

}  // namespace platform::text

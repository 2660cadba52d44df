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

/// One byte to look for, and the mask that levels its case.
struct Probe {
  char byte;
  char mask;

  bool fits(char c) const { return static_cast<char>(c | mask) == byte; }
};

/// A bit for each of the sixteen places from which both probes fit, `distance` apart.
unsigned candidatesIn(const char* block, std::size_t distance, Probe first, Probe last) {
#ifdef __SSE2__
  const auto fits = [](const char* bytes, Probe probe) {
    const __m128i sixteen = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
    return _mm_cmpeq_epi8(_mm_or_si128(sixteen, _mm_set1_epi8(probe.mask)),
                          _mm_set1_epi8(probe.byte));
  };
  return static_cast<unsigned>(
      _mm_movemask_epi8(_mm_and_si128(fits(block, first), fits(block + distance, last))));
#else
  unsigned candidates = 0;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const bool both = first.fits(block[i]) && last.fits(block[i + distance]);
    candidates |= static_cast<unsigned>(both) << i;
  }
  return candidates;
#endif
}

}  // namespace

BytePattern::BytePattern(std::string_view bytes, bool ignoreCase)
    : bytes_(bytes), mask_(bytes.size(), '\0') {
  if (!ignoreCase) return;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (!isLetter(bytes[i])) continue;
    mask_[i] = 0x20;
    bytes_[i] = static_cast<char>(bytes[i] | 0x20);
  }
}

std::optional<std::size_t> ByteScan::next() {
  if (gaveUp_ || text_.size() < pattern_.size()) return std::nullopt;
  const std::size_t distance = pattern_.size() - 1;
  const std::size_t places = text_.size() - distance;  // where the pattern could begin
  const Probe first{pattern_.bytes_.front(), pattern_.mask_.front()};
  const Probe last{pattern_.bytes_.back(), pattern_.mask_.back()};
  const char* bytes = text_.data();
  while (position_ + kBlock <= places) {
    const std::size_t base = position_;
    if (const unsigned found = candidatesIn(bytes + base, distance, first, last); found != 0) {
      if (const auto hit = nextAmong(found, base); hit || gaveUp_) return hit;
    }
    position_ = base + kBlock;
  }
  if (position_ < places && places >= kBlock) {
    // The rest is less than a block: look at the last sixteen places once more, and pass over
    // those that have had their turn.
    const std::size_t base = places - kBlock;
    const unsigned found = candidatesIn(bytes + base, distance, first, last);
    const unsigned rest = found >> (position_ - base) << (position_ - base);
    if (const auto hit = nextAmong(rest, base); hit || gaveUp_) return hit;
    position_ = places;
  }
  for (; position_ < places; ++position_) {
    if (!first.fits(bytes[position_]) || !last.fits(bytes[position_ + distance])) continue;
    if (const auto hit = nextAmong(1, position_); hit || gaveUp_) return hit;
  }
  return std::nullopt;
}

std::optional<std::size_t> ByteScan::nextAmong(unsigned candidates, std::size_t base) {
  for (; candidates != 0; candidates &= candidates - 1) {
    const std::size_t place = base + static_cast<std::size_t>(std::countr_zero(candidates));
    // The most that an honest text asks for is a few looks a byte.
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
  const std::size_t last = pattern_.size() - 1;
  std::size_t i = 1;
  while (i < last && Probe{pattern_.bytes_[i], pattern_.mask_[i]}.fits(text_[position + i])) ++i;
  effort_ += i;
  return i >= last;
}

}  // namespace platform::text

#include "platform/text/unit_search.h"

#include <algorithm>
#include <bit>

namespace platform::text {
namespace {

constexpr std::size_t kInside = static_cast<std::size_t>(-1);

/// The maximum number of scalars in the comparison form per byte of the source, as a test checks.
constexpr std::size_t kMostScalarsPerByte = 2;

}  // namespace

UnitNeedle::UnitNeedle(std::string_view needle, CaseFolding folding) {
  UnitReader units(needle, 0, ScalarForms::shared(folding));
  while (units.next()) {
    scalars_.insert(scalars_.end(), units.scalars().begin(), units.scalars().end());
  }
  wellFormed_ = std::find(scalars_.begin(), scalars_.end(), kIllFormed) == scalars_.end();
  borders_.assign(scalars_.size() + 1, 0);
  std::size_t matched = 0;
  for (std::size_t length = 2; length <= scalars_.size(); ++length) {
    matched = advance(matched, scalars_[length - 1]);
    borders_[length] = static_cast<std::uint32_t>(matched);
  }
}

std::size_t UnitNeedle::advance(std::size_t matched, char32_t scalar) const {
  while (matched > 0 && scalars_[matched] != scalar) matched = borders_[matched];
  return scalars_[matched] == scalar ? matched + 1 : 0;
}

UnitSearch::UnitSearch(const UnitNeedle& needle, std::string_view text, std::size_t from,
                       ScalarForms& forms)
    : needle_(needle), units_(text, from, forms) {
  const bool fits = needle.size() / kMostScalarsPerByte <= text.size() - from;
  if (!fits || !needle.isWellFormed()) {
    units_.skipToEnd();
  } else {
    origins_.resize(std::bit_ceil(needle.size()));
  }
}

std::optional<ByteRange> UnitSearch::next() {
  for (;;) {
    if (matched_ == 0) units_.skipASCIIUntil(needle_.front());
    if (!units_.next()) return std::nullopt;
    // A match begins at the start of a unit.
    if (matched_ == 0 && units_.scalars().front() != needle_.front()) continue;
    if (const auto match = searchUnit()) return match;
  }
}

std::optional<ByteRange> UnitSearch::searchUnit() {
  const std::size_t mask = origins_.size() - 1;
  const std::span<const char32_t> scalars = units_.scalars();
  for (std::size_t i = 0; i < scalars.size(); ++i) {
    origins_[count_++ & mask] = i == 0 ? units_.begin() : kInside;
    matched_ = needle_.advance(matched_, scalars[i]);
    if (matched_ < needle_.size()) continue;
    const std::size_t begin = origins_[(count_ - needle_.size()) & mask];
    if (begin != kInside && i + 1 == scalars.size()) {
      matched_ = 0;
      return ByteRange{begin, units_.end()};
    }
    matched_ = needle_.border();
  }
  return std::nullopt;
}

}  // namespace platform::text

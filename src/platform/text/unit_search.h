#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/text/comparison_units.h"
#include "platform/text/utf8.h"

/// Searches in comparison forms. Internal to this room.
namespace platform::text {

/// A needle in comparison form, with the failure table of Knuth, Morris and Pratt. The search never
/// moves back in the text, so that the text's form need not be stored.
class UnitNeedle {
 public:
  /// `needle` must not be empty.
  UnitNeedle(std::string_view needle, CaseFolding folding);

  std::size_t size() const { return scalars_.size(); }
  char32_t front() const { return scalars_.front(); }
  bool isWellFormed() const { return wellFormed_; }

  /// The length of the longest prefix of the needle that ends with `scalar`, if `matched` scalars
  /// of it matched before.
  std::size_t advance(std::size_t matched, char32_t scalar) const;

  /// The length of the longest proper prefix of the needle that is also its suffix.
  std::size_t border() const { return borders_.back(); }

 private:
  std::vector<char32_t> scalars_;
  std::vector<std::uint32_t> borders_;  // the border of each prefix, by the prefix's length
  bool wellFormed_ = true;
};

/// One pass over a text. Finds matches of the needle that begin and end at unit boundaries,
/// ascending and not overlapping.
class UnitSearch {
 public:
  /// `from` must be the start of a unit.
  UnitSearch(const UnitNeedle& needle, std::string_view text, std::size_t from, ScalarForms& forms);

  std::optional<ByteRange> next();

 private:
  std::optional<ByteRange> searchUnit();

  const UnitNeedle& needle_;
  UnitReader units_;
  std::size_t matched_ = 0;
  // Source offsets of the last scalars: the start of their unit, or kInside for a scalar inside
  // one. A ring that is just long enough to find where a match begins.
  std::vector<std::size_t> origins_;
  std::size_t count_ = 0;
};

}  // namespace platform::text

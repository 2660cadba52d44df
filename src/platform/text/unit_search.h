#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/text/comparison_units.h"
#include "platform/text/utf8.h"

/// Search in comparison forms. Inside this room only.
namespace platform::text {

/// A needle in comparison form, with the table of Knuth, Morris and Pratt: the search never goes
/// back in the text, whatever the needle, so that the text's form need not be kept.
class UnitNeedle {
 public:
  /// `needle` is not empty.
  UnitNeedle(std::string_view needle, CaseFolding folding);

  std::size_t size() const { return scalars_.size(); }
  char32_t front() const { return scalars_.front(); }
  bool isWellFormed() const { return wellFormed_; }

  /// How much of the needle's head ends with `scalar`, where `matched` of it ended before.
  std::size_t advance(std::size_t matched, char32_t scalar) const;

  /// The longest head of the needle, but for the needle itself, that is also its tail.
  std::size_t border() const { return borders_.back(); }

 private:
  std::vector<char32_t> scalars_;
  std::vector<std::uint32_t> borders_;  // of each head, by its length
  bool wellFormed_ = true;
};

/// One pass over a text: the places where the needle's form stands and both its ends are ends of
/// units, ascending and not overlapping.
class UnitSearch {
 public:
  /// `from` is the start of a unit.
  UnitSearch(const UnitNeedle& needle, std::string_view text, std::size_t from, ScalarForms& forms);

  std::optional<ByteRange> next();

 private:
  std::optional<ByteRange> searchUnit();

  const UnitNeedle& needle_;
  UnitReader units_;
  std::size_t matched_ = 0;
  // Where the last scalars of the form come from: a unit's start in the source, or kInside for a
  // scalar within one. A ring, just long enough to look back to where the needle would begin.
  std::vector<std::size_t> origins_;
  std::size_t count_ = 0;
};

}  // namespace platform::text

#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace platform::text {

/// Finds one string in others as a reader would: canonically equivalent sequences match each
/// other ("é" finds "e" and U+0301), and a match never begins or ends inside a composed
/// character, so "e" is not found in either form of "é". With CaseFolding::full the comparison
/// is by Unicode full case folding ("STRASSE" finds "straße"); accents always count. No locale.
///
/// Cost: texts and needles of plain ASCII are searched as bytes. Others are normalised a piece
/// at a time, with a map back to the source. Linear in the text for every needle.
class StringSearch {
 public:
  /// `needle` must be valid UTF-8. An empty needle finds nothing.
  StringSearch(std::string_view needle, CaseFolding folding);
  ~StringSearch();
  StringSearch(StringSearch&&) noexcept;
  StringSearch& operator=(StringSearch&&) noexcept;

  /// The first match in `text` that begins at `from` or later, or nothing. `text` must be valid
  /// UTF-8; a text that is not is searched as its bytes are, without a crash. `from` must be a
  /// character boundary: 0 or the end of an earlier match.
  std::optional<ByteRange> find(std::string_view text, std::size_t from = 0) const;

  /// All matches, ascending, not overlapping. One pass: the text is normalised at most once.
  std::vector<ByteRange> findAll(std::string_view text) const;

  /// Whether there is a match. May be cheaper than `find`.
  bool isIn(std::string_view text) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace platform::text

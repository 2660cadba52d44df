#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace platform::text {

/// Finds one string in others as a reader would: canonically equivalent sequences match each
/// other ("é" finds "e" and U+0301), and with CaseFolding::full so do texts that differ in case
/// ("STRASSE" finds "straße"). Accents always count, and so does every other scalar: joiners, soft
/// hyphens, control characters. No locale.
///
/// A match never begins or ends inside a composed character: not before a combining mark (general
/// category M, which holds the variation selectors) or a conjoining vowel or final of Hangul, and
/// not within what one scalar stands for. So "e" is not found in either form of "é", nor "s" in
/// "ß", nor U+2764 where U+FE0F follows it. Joiners do not compose: a match may end before U+200D.
/// A needle that begins with a mark is found at a text's start only.
///
/// Cost: linear in the text for every needle. An ASCII needle is searched for in the text's bytes
/// as long as that cannot miss a match; others in comparison form, unit by unit. An object must be
/// used by one thread at a time.
class StringSearch {
 public:
  /// `needle` must be valid UTF-8. An empty needle finds nothing.
  StringSearch(std::string_view needle, CaseFolding folding);
  ~StringSearch();
  StringSearch(StringSearch&&) noexcept;
  StringSearch& operator=(StringSearch&&) noexcept;

  /// The first match in `text` that begins at or after `from`, if any. `text` should be valid
  /// UTF-8; ill-formed text is safe and searched by its bytes. `from` must be 0 or the end of an
  /// earlier match.
  std::optional<ByteRange> find(std::string_view text, std::size_t from = 0) const;

  /// The first `limit` matches, ascending and not overlapping, in one pass.
  std::vector<ByteRange> findAll(std::string_view text, std::size_t limit = SIZE_MAX) const;

  /// Whether there is a match. Can be faster than `find`.
  bool isIn(std::string_view text) const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

/// Whether the text contains these bytes. For a few bytes, memmem(3) takes several times as long.
bool containsBytes(std::string_view text, std::string_view bytes);

}  // namespace platform::text

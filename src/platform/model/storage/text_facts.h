#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/markdown/ast.h"

namespace tavimodel {

/// Properties derived from a note's text, stored beside it so that lists need not read the text.
struct TextFacts {
  /// Bits that tell what the text contains; they are stored, so their values never change.
  enum Feature : std::int64_t {
    images = 1,
    code = 2,
    wikiLinks = 4,
    blank = 8,         ///< no characters but whitespace and newlines
    linksStored = 16,  ///< `links` are stored in noteLink
  };

  std::string digest;       ///< head of the SHA-256, 16 lower-case hexadecimal digits
  std::int64_t length = 0;  ///< UTF-8 bytes
  std::int64_t todoIncomplete = 0;
  std::int64_t todoCompleted = 0;
  std::int64_t features = 0;       ///< bits of Feature
  std::vector<std::string> links;  ///< titles named by wiki links, folded, each once

  static TextFacts of(std::string_view text);
  /// Like the above, for a text that has already been parsed.
  static TextFacts of(std::string_view text, const zephyrdown::ZDKTextSummary& summary);
  /// `digest` of a text.
  static std::string digestOf(std::string_view text);
};

/// The same bits in SQL: tests of `noteSummary.features`, which is NULL where the facts are not
/// known.
struct FeatureSQL {
  static constexpr std::string_view images = "(features & 1) <> 0";
  static constexpr std::string_view code = "(features & 2) <> 0";
  static constexpr std::string_view wikiLinks = "(features & 4) <> 0";
  static constexpr std::string_view blank = "(features & 8) <> 0";  ///< as in index summaryOfFew
  /// There are wiki links, and their titles are not in `noteLink`.
  static constexpr std::string_view linksNotStored = "(features & (4 | 16)) = 4";
  /// The value once the titles have been removed from `noteLink`.
  static constexpr std::string_view withoutStoredLinks = "features & ~16";
};
static_assert(TextFacts::images == 1 && TextFacts::code == 2 && TextFacts::wikiLinks == 4 &&
              TextFacts::blank == 8 && TextFacts::linksStored == 16);

}  // namespace tavimodel

#pragma once

#include <string>
#include <string_view>

namespace platform::text {

/// Whether comparisons ignore case, by Unicode's full case folding: "STRASSE" equals "straße".
/// Canonically equivalent texts are equal in both modes; accents count.
enum class CaseFolding { none, full };

/// Returns the form for comparisons that ignore case: NFD of the full case folding of NFD (Unicode
/// 3.13, canonical caseless matching, D145). Fast for ASCII. Ill-formed UTF-8 becomes U+FFFD.
std::string foldedForSearch(std::string_view text);

/// Normalizes to NFC (canonical composition).
std::string canonicallyComposed(std::string_view text);

/// Whether two texts are equal, ignoring case and canonical equivalence.
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace platform::text

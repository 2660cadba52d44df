#pragma once

#include <string>
#include <string_view>

namespace platform::text {

/// How two texts are compared: as they are, or without case (Unicode full case folding, so that
/// "STRASSE" is "straße"). Canonically equivalent texts are equal either way; accents count.
enum class CaseFolding { none, full };

/// The form in which texts are compared without case: NFD of the full case folding of NFD
/// (Unicode 3.13, canonical caseless matching, D145). ASCII takes a fast path. Invalid UTF-8 is
/// read as U+FFFD.
std::string foldedForSearch(std::string_view text);

/// Canonical composition, NFC. Text that is in NFC already comes back as it is.
std::string canonicallyComposed(std::string_view text);

/// Whether two texts are the same but for case and canonical equivalence.
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace platform::text

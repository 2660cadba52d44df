#pragma once

#include <string>
#include <string_view>

/// Displays, compares and creates names of files.
namespace tavi::vault {

/// The name for display on a terminal: ill-formed UTF-8 and control characters become U+FFFD.
std::string shown(std::string_view name);

/// Only the letters and digits, case-folded: equal for a title and the file named after it.
std::string comparable(std::string_view name);

/// A readable file name, without an extension, for a note of this title, valid on all common file
/// systems: "A/B: draft?" becomes "A-B- draft". At most 120 bytes; never empty, hidden or reserved.
std::string fileNameForTitle(std::string_view title);

/// The name-based UUID of the text (RFC 4122, version 5), in upper case. The same text always has
/// the same UUID.
std::string uuidOf(std::string_view text);

/// Whether the text is a UUID in its usual form (RFC 4122), in either case.
bool isUUID(std::string_view text);

}  // namespace tavi::vault

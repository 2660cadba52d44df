#pragma once

#include <string>
#include <string_view>

/// Names of files: as they are shown, compared and made.
namespace tavi::vault {

/// The name on one line of a terminal: ill-formed UTF-8 and control characters are U+FFFD.
std::string shown(std::string_view name);

/// Letters and digits alone, without case: what a title and the file named after it share.
std::string comparable(std::string_view name);

/// A name, without an extension, that every common file system takes and a person would give to a
/// note of this title: "A/B: draft?" becomes "A-B- draft". At most 120 bytes; never empty, hidden
/// or reserved.
std::string fileNameForTitle(std::string_view title);

/// A UUID that follows from the text alone (RFC 4122, version 5), in upper case.
std::string uuidOf(std::string_view text);

bool isUUID(std::string_view text);

}  // namespace tavi::vault

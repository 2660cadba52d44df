#pragma once

#include <optional>
#include <string_view>

#include "platform/system/preferences.h"

/// Parsers of the two formats of property lists, for use in this room only. Both return absent for
/// malformed input; see readPropertyList.
namespace platform::system {

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";

std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view bytes);
std::optional<PropertyDictionary> parseXMLPropertyList(std::string_view bytes);

}  // namespace platform::system

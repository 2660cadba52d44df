#pragma once

#include <optional>
#include <string_view>

#include "platform/system/preferences.h"

/// The two forms of a property list. Inside this room only.
namespace platform::system {

inline constexpr std::string_view kBinaryPropertyListMagic = "bplist00";

std::optional<PropertyDictionary> parseBinaryPropertyList(std::string_view bytes);
std::optional<PropertyDictionary> parseXMLPropertyList(std::string_view bytes);

}  // namespace platform::system

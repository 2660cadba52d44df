#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace platform::system {

/// A value of a property list's top dictionary. Containers, data and dates are read over and
/// stand as std::monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// The top dictionary of a property list.
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

/// Reads a property list file, XML or binary ("bplist00"). Nothing when the file is missing,
/// unreadable, larger than 16 MiB, malformed, or its top value is no dictionary. Nesting of any
/// depth and hostile bytes are safe; what only an attack needs (entity declarations, elements
/// nested 10,000 deep, texts repeated to more than 64 MiB) counts as malformed.
std::optional<PropertyDictionary> readPropertyList(const std::filesystem::path& path);

/// The same of bytes in memory.
std::optional<PropertyDictionary> parsePropertyList(std::string_view bytes);

/// A user-defaults suite: $HOME/Library/Preferences/NAME.plist, read once at construction.
class UserDefaults {
 public:
  explicit UserDefaults(std::string_view suiteName);

  /// False when the suite or the key is missing. Numbers are true unless zero; the texts "YES",
  /// "true" and "1" (any case) are true.
  bool boolForKey(std::string_view key) const;

 private:
  PropertyDictionary values_;
};

}  // namespace platform::system

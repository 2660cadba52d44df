#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace platform::system {

/// A value in the top-level dictionary of a property list. Containers, data and dates are not read;
/// they become std::monostate.
using PropertyValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// The top-level dictionary of a property list.
using PropertyDictionary = std::map<std::string, PropertyValue, std::less<>>;

/// Reads a property list file, XML or binary ("bplist00"). Absent if the file is missing,
/// unreadable, larger than 16 MiB or malformed, or its top-level value is not a dictionary. Safe
/// for untrusted files; constructs that only an attack uses (entity declarations, elements nested
/// more than 10,000 deep, shared texts of more than 64 MiB in total) count as malformed.
std::optional<PropertyDictionary> readPropertyList(const std::filesystem::path& path);

/// The same for bytes in memory.
std::optional<PropertyDictionary> parsePropertyList(std::string_view bytes);

/// The suite of preferences in $HOME/Library/Preferences/NAME.plist, read once by the constructor.
class UserDefaults {
 public:
  explicit UserDefaults(std::string_view suiteName);

  /// True for true, for numbers other than 0, and for the texts "YES", "true" and "1" in any case.
  /// False otherwise, also if the suite or the key is missing.
  bool boolForKey(std::string_view key) const;

 private:
  PropertyDictionary values_;
};

}  // namespace platform::system

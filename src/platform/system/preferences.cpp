#include "platform/system/preferences.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "platform/system/directories.h"
#include "platform/system/file_descriptor.h"
#include "platform/system/property_list_formats.h"

namespace platform::system {
namespace {

constexpr std::size_t kLargestFile = std::size_t{16} << 20;  // bytes

/// The bytes of a regular file of at most kLargestFile. Does not block on a FIFO.
std::optional<std::string> contents(const std::filesystem::path& path) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size > kLargestFile) return std::nullopt;
  std::string bytes(size, '\0');
  std::size_t filled = 0;
  while (filled < size) {
    const auto count = readSome(file.get(), bytes.data() + filled, size - filled);
    if (count <= 0) return std::nullopt;
    filled += static_cast<std::size_t>(count);
  }
  return bytes;
}

bool isYes(const std::string& text) {
  const auto is = [&text](std::string_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
      return (a >= 'A' && a <= 'Z' ? static_cast<char>(a | 0x20) : a) == b;
    });
  };
  return is("yes") || is("true") || is("1");
}

/// Converts a value to bool; see UserDefaults::boolForKey.
struct Truth {
  bool operator()(std::monostate) const { return false; }
  bool operator()(bool value) const { return value; }
  bool operator()(std::int64_t value) const { return value != 0; }
  bool operator()(double value) const { return value != 0; }
  bool operator()(const std::string& value) const { return isYes(value); }
};

PropertyDictionary suite(std::string_view name) {
  const auto home = homeDirectory();
  if (!home) return {};
  const auto path = *home / "Library/Preferences" / (std::string(name) + ".plist");
  return readPropertyList(path).value_or(PropertyDictionary());
}

}  // namespace

std::optional<PropertyDictionary> readPropertyList(const std::filesystem::path& path) {
  const auto bytes = contents(path);
  return bytes ? parsePropertyList(*bytes) : std::nullopt;
}

std::optional<PropertyDictionary> parsePropertyList(std::string_view bytes) {
  if (bytes.size() > kLargestFile) return std::nullopt;
  return bytes.starts_with(kBinaryPropertyListMagic) ? parseBinaryPropertyList(bytes)
                                                     : parseXMLPropertyList(bytes);
}

UserDefaults::UserDefaults(std::string_view suiteName) : values_(suite(suiteName)) {}

bool UserDefaults::boolForKey(std::string_view key) const {
  const auto entry = values_.find(key);
  return entry != values_.end() && std::visit(Truth(), entry->second);
}

}  // namespace platform::system

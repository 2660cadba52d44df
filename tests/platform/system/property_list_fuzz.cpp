#include "platform/system/preferences.h"
#include "support/fuzzing.h"

// Fuzzes the parsers of property lists: bytes give no dictionary, or the same dictionary each time.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = support::fuzzed(data, size);
  const auto dictionary = platform::system::parsePropertyList(bytes);
  const auto again = platform::system::parsePropertyList(bytes);
  // Does not compare values: a property list can contain NaN, which is not equal to itself.
  support::require(dictionary.has_value() == again.has_value());
  if (!dictionary) return 0;
  support::require(dictionary->size() == again->size());
  for (const auto& [key, value] : *dictionary) {
    const auto found = again->find(key);
    support::require(found != again->end() && found->second.index() == value.index());
    if (const auto* text = std::get_if<std::string>(&value)) {
      support::require(std::get<std::string>(found->second) == *text);
    }
  }
  return 0;
}

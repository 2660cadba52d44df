#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// Shared by the libFuzzer targets, each of which defines `LLVMFuzzerTestOneInput`.
namespace support {

/// Aborts; the fuzzer then prints the stack and saves the input.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// A copy in a block of exactly its size, so that the sanitizer catches reads past its end.
inline std::string_view fuzzed(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace support

#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

/// What the targets of libFuzzer share. Each defines `LLVMFuzzerTestOneInput`.
namespace support {

/// Stops the fuzzer, which then prints the way here and keeps the input.
inline void require(bool holds) {
  if (!holds) __builtin_trap();
}

/// The input lies in a block of exactly its size, so that reading past it is caught.
inline std::string_view fuzzed(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

}  // namespace support

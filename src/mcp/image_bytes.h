#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi::mcp {

/// Random access to the bytes of an executable file, for readers of its headers.
class ImageBytes {
 public:
  virtual ~ImageBytes() = default;
  virtual std::uint64_t size() const = 0;  ///< bytes

  /// Fills `into` with the bytes from `offset` on. False if they are not all inside the file.
  /// Throws if the read fails.
  virtual bool read(std::uint64_t offset, std::span<std::uint8_t> into) = 0;
};

/// Decodes an unsigned integer of at most 8 bytes.
constexpr std::uint64_t integer(std::span<const std::uint8_t> bytes, std::endian order) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    value = value << 8 | bytes[order == std::endian::big ? i : bytes.size() - 1 - i];
  return value;
}

}  // namespace tavi::mcp

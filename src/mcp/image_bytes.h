#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace tavi::mcp {

/// Random access to the bytes of an executable file, of which a reader wants a few headers only.
class ImageBytes {
 public:
  virtual ~ImageBytes() = default;
  virtual std::uint64_t size() const = 0;

  /// Fills `into` with the bytes from `offset` on. False when not all of them lie inside the file.
  /// A failing disk throws.
  virtual bool read(std::uint64_t offset, std::span<std::uint8_t> into) = 0;
};

/// The unsigned integer that `bytes`, at most 8, stand for.
constexpr std::uint64_t integer(std::span<const std::uint8_t> bytes, std::endian order) {
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i)
    value = value << 8 | bytes[order == std::endian::big ? i : bytes.size() - 1 - i];
  return value;
}

}  // namespace tavi::mcp

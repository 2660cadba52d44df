#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "mcp/build_identity.h"

namespace tavi::mcp::testing {

/// Builds binary data field by field.
class Bytes {
 public:
  explicit Bytes(std::endian order) : order_(order) {}

  Bytes& number(std::uint64_t value, int width) {
    for (int i = 0; i < width; ++i) {
      const int shift = 8 * (order_ == std::endian::big ? width - 1 - i : i);
      text_ += static_cast<char>(value >> shift & 0xff);
    }
    return *this;
  }
  Bytes& words(std::initializer_list<std::uint32_t> values) {
    for (const std::uint32_t value : values) number(value, 4);
    return *this;
  }
  Bytes& text(std::string_view bytes) { return text_ += bytes, *this; }
  Bytes& zerosTo(std::size_t size) { return text_.resize(std::max(size, text_.size())), *this; }
  operator std::string() const { return text_; }
  std::size_t size() const { return text_.size(); }

 private:
  std::endian order_;
  std::string text_;
};

/// The bytes of an executable file in memory.
class MemoryImage final : public ImageBytes {
 public:
  explicit MemoryImage(std::string_view bytes) : bytes_(bytes) {}
  std::uint64_t size() const override { return bytes_.size(); }
  bool read(std::uint64_t offset, std::span<std::uint8_t> into) override {
    ++reads;
    if (offset > bytes_.size() || into.size() > bytes_.size() - offset) return false;
    std::memcpy(into.data(), bytes_.data() + offset, into.size());
    return true;
  }
  int reads = 0;

 private:
  std::string_view bytes_;
};

constexpr std::string_view kUUIDText = "0123456789abcdef";

inline std::string uuidCommand(std::string_view uuid = kUUIDText) {
  return Bytes(std::endian::little).words({27, 24}).text(uuid);
}

/// A thin 64-bit Mach-O file with these load commands.
inline std::string thinMachO(std::uint32_t count, std::string_view commands) {
  return Bytes(std::endian::little)
      .words({0xFEEDFACF, kMachOProcessorX86_64, 3, 2, count})
      .zerosTo(32)
      .text(commands);
}

/// A 64-bit little-endian ELF file with a build id, followed by `filling`.
inline std::string elfFile(std::string_view buildID, std::string_view filling = "") {
  const auto size = static_cast<std::uint32_t>(buildID.size());
  return Bytes(std::endian::little)
      .text({"\177ELF\2\1\1", 7})
      .zerosTo(32)
      .number(64, 8)  // e_phoff
      .zerosTo(54)
      .number(56, 2)  // e_phentsize
      .number(1, 2)   // e_phnum
      .zerosTo(64)
      .words({4, 4})   // PT_NOTE
      .number(120, 8)  // p_offset
      .zerosTo(96)
      .number(16 + size, 8)  // p_filesz
      .zerosTo(112)
      .number(4, 8)  // p_align
      .words({4, size, 3})
      .text({"GNU\0", 4})
      .text(buildID)
      .text(filling);
}

}  // namespace tavi::mcp::testing

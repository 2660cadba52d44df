#include <algorithm>

#include "mcp/build_identity.h"

// Mach-O: see <mach-o/loader.h> and <mach-o/fat.h>. A fat file contains one thin file per processor
// type; its own header is always big-endian.

namespace tavi::mcp {
namespace {

constexpr std::uint32_t kFatMagic = 0xCAFEBABE;
constexpr std::uint32_t kFatMagic64 = 0xCAFEBABF;
constexpr std::uint32_t kThinMagic64 = 0xFEEDFACF;
constexpr std::uint32_t kUUIDCommand = 27;

std::uint32_t word(std::span<const std::uint8_t> bytes, std::size_t at, std::endian order) {
  return static_cast<std::uint32_t>(integer(bytes.subspan(at, 4), order));
}

std::optional<BuildUUID> uuidOfCommand(ImageBytes& image, std::uint64_t offset) {
  BuildUUID uuid;
  if (!image.read(offset + 8, uuid)) return {};
  return uuid;
}

/// The UUID of the thin file that starts at offset `begin`.
std::optional<BuildUUID> thinUUID(ImageBytes& image, std::uint64_t begin) {
  std::array<std::uint8_t, 32> header;
  if (!image.read(begin, header)) return {};
  if (word(header, 0, std::endian::little) != kThinMagic64) return {};
  const std::uint32_t commands = word(header, 16, std::endian::little);
  std::uint64_t offset = begin + header.size();
  for (std::uint32_t i = 0; i < commands; ++i) {
    std::array<std::uint8_t, 8> command;
    if (!image.read(offset, command)) return {};
    if (word(command, 0, std::endian::little) == kUUIDCommand) return uuidOfCommand(image, offset);
    const std::uint32_t length = word(command, 4, std::endian::little);
    if (length < command.size() || length > image.size() - offset) return {};
    offset += length;
  }
  return {};
}

/// The offset of the slice for `processor`. Entries are 20 bytes, or 32 with 64-bit offsets
/// (`wide`).
std::optional<std::uint64_t> sliceOffset(ImageBytes& image, std::uint32_t processor, bool wide) {
  std::array<std::uint8_t, 4> count;
  if (!image.read(4, count)) return {};
  std::array<std::uint8_t, 32> buffer;
  const std::span<std::uint8_t> entry = std::span(buffer).first(wide ? 32 : 20);
  std::uint64_t offset = 8;
  for (std::uint64_t left = integer(count, std::endian::big); left > 0; --left) {
    if (!image.read(offset, entry)) return {};
    if (word(entry, 0, std::endian::big) == processor)
      return integer(entry.subspan(8, wide ? 8 : 4), std::endian::big);
    offset += entry.size();
  }
  return {};
}

}  // namespace

std::optional<BuildUUID> machOUUID(ImageBytes& image, std::uint32_t processor) {
  std::array<std::uint8_t, 4> magic;
  if (!image.read(0, magic)) return {};
  if (word(magic, 0, std::endian::little) == kThinMagic64) return thinUUID(image, 0);
  const std::uint32_t fat = word(magic, 0, std::endian::big);
  if (fat != kFatMagic && fat != kFatMagic64) return {};
  const auto slice = sliceOffset(image, processor, fat == kFatMagic64);
  return slice ? thinUUID(image, *slice) : std::nullopt;
}

}  // namespace tavi::mcp

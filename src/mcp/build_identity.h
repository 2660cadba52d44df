#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "mcp/image_bytes.h"

namespace tavi::mcp {

/// Identifies one build of a program: 16 bytes that the linker writes into the executable.
using BuildUUID = std::array<std::uint8_t, 16>;

/// Mach-O processor types, which select a slice of a fat file.
inline constexpr std::uint32_t kMachOProcessorX86_64 = 0x01000007;
inline constexpr std::uint32_t kMachOProcessorARM64 = 0x0100000C;

/// The LC_UUID of a Mach-O file (<mach-o/loader.h>): a thin 64-bit little-endian file, or the slice
/// for `processor` of a fat file with 32-bit or 64-bit entries. Absent for any other file and for a
/// malformed one.
std::optional<BuildUUID> machOUUID(ImageBytes& image, std::uint32_t processor);

/// The GNU build id (NT_GNU_BUILD_ID in a PT_NOTE segment, elf(5)) of an ELF file of either class
/// and byte order: its first 16 bytes, padded with zeros. Absent for any other file, for one
/// without a build id and for a malformed one.
std::optional<BuildUUID> elfBuildID(ImageBytes& image);

/// The build id of an ELF or Mach-O file; for a fat file, of the slice for this build's processor.
std::optional<BuildUUID> buildIdentity(ImageBytes& image);

}  // namespace tavi::mcp

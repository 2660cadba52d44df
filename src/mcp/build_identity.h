#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "mcp/image_bytes.h"

namespace tavi::mcp {

/// Identifies one build of a program: 16 bytes that the linker wrote into the file.
using BuildUUID = std::array<std::uint8_t, 16>;

/// Mach-O processor types: which slice of a fat file a reader looks at.
inline constexpr std::uint32_t kMachOProcessorX86_64 = 0x01000007;
inline constexpr std::uint32_t kMachOProcessorARM64 = 0x0100000C;

/// The LC_UUID of a Mach-O file: thin 64-bit little-endian, or the slice of `processor` in a fat
/// file with 32-bit or 64-bit entries. Nothing for any other file and for a malformed one.
std::optional<BuildUUID> machOUUID(ImageBytes& image, std::uint32_t processor);

/// The GNU build id (a PT_NOTE of type NT_GNU_BUILD_ID) of an ELF file, either class and byte
/// order: its first 16 bytes, a shorter one filled up with zeros. Nothing for any other file, for
/// one without a build id and for a malformed one.
std::optional<BuildUUID> elfBuildID(ImageBytes& image);

/// Either of the two; of a fat file the slice for the processor that this build runs on.
std::optional<BuildUUID> buildIdentity(ImageBytes& image);

}  // namespace tavi::mcp

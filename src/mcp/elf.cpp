#include <algorithm>
#include <string_view>

#include "mcp/build_identity.h"

// ELF: see elf(5). The build id is the descriptor of a note. A note has a header of three 32-bit
// words (name length, descriptor length, type), the name "GNU\0" and the descriptor; name and
// descriptor are padded to the segment's alignment.

namespace tavi::mcp {
namespace {

constexpr std::uint32_t kNoteSegment = 4;
constexpr std::uint32_t kBuildIDNote = 3;
constexpr std::string_view kBuildIDName{"GNU\0", 4};
constexpr std::uint16_t kCountIsElsewhere = 0xffff;  ///< PN_XNUM; our programs never need it

/// Real files have a few notes. Crafted headers could refer to the same bytes again and again.
constexpr int kMostNotes = 4096;

/// The offsets of the header fields in the two classes of ELF file, and the size of an address.
struct Layout {
  std::size_t headerSize, segmentTable, segmentEntrySize, segmentCount;
  std::size_t segmentSize, offset, fileSize, alignment;
  std::size_t address;
};
constexpr Layout k32{52, 28, 42, 44, 32, 4, 16, 28, 4};
constexpr Layout k64{64, 32, 54, 56, 56, 8, 32, 48, 8};

/// A PT_NOTE segment, as offsets in the file.
struct NoteSegment {
  std::uint64_t begin, end, alignment;
};

class ELFReader {
 public:
  ELFReader(ImageBytes& image, const Layout& layout, std::endian order)
      : image_(image), layout_(layout), order_(order) {}

  std::optional<BuildUUID> buildID() {
    std::array<std::uint8_t, 64> buffer;
    const std::span<std::uint8_t> header = std::span(buffer).first(layout_.headerSize);
    if (!image_.read(0, header)) return {};
    const std::uint64_t count = field(header, layout_.segmentCount, 2);
    const std::uint64_t entrySize = field(header, layout_.segmentEntrySize, 2);
    if (count == kCountIsElsewhere || entrySize < layout_.segmentSize) return {};
    std::uint64_t offset = field(header, layout_.segmentTable, layout_.address);
    for (std::uint64_t i = 0; i < count; ++i, offset += entrySize) {
      const std::span<std::uint8_t> segment = std::span(buffer).first(layout_.segmentSize);
      if (offset > image_.size() || !image_.read(offset, segment)) return {};
      if (field(segment, 0, 4) != kNoteSegment) continue;
      if (const auto found = buildIDIn(noteSegment(segment))) return found;
    }
    return {};
  }

 private:
  std::uint64_t field(std::span<const std::uint8_t> bytes, std::size_t at, std::size_t width) {
    return integer(bytes.subspan(at, width), order_);
  }

  /// Empty if the segment is not inside the file.
  NoteSegment noteSegment(std::span<const std::uint8_t> segment) {
    const std::uint64_t begin = field(segment, layout_.offset, layout_.address);
    const std::uint64_t size = field(segment, layout_.fileSize, layout_.address);
    const std::uint64_t alignment = field(segment, layout_.alignment, layout_.address);
    if (begin > image_.size() || size > image_.size() - begin) return {};
    return {begin, begin + size, alignment == 8 ? 8u : 4u};
  }

  std::optional<BuildUUID> buildIDIn(const NoteSegment& notes) {
    const auto padded = [&](std::uint64_t size) {
      return (size + notes.alignment - 1) & ~(notes.alignment - 1);
    };
    std::array<std::uint8_t, 12> note;
    for (std::uint64_t offset = notes.begin; offset < notes.end && ++notesSeen_ <= kMostNotes;) {
      if (!image_.read(offset, note)) return {};
      const std::uint64_t nameLength = field(note, 0, 4);
      const std::uint64_t length = field(note, 4, 4);
      const std::uint64_t descriptor = offset + padded(note.size() + nameLength);
      if (descriptor > notes.end || length > notes.end - descriptor) return {};
      if (field(note, 8, 4) == kBuildIDNote && length > 0 && hasName(offset, nameLength))
        return identity(descriptor, length);
      offset = descriptor + padded(length);
    }
    return {};
  }

  bool hasName(std::uint64_t note, std::uint64_t length) {
    std::array<std::uint8_t, kBuildIDName.size()> name;
    return length == name.size() && image_.read(note + 12, name) &&
           std::ranges::equal(name, kBuildIDName);
  }

  std::optional<BuildUUID> identity(std::uint64_t descriptor, std::uint64_t length) {
    BuildUUID uuid{};
    const std::size_t taken = std::min<std::uint64_t>(length, uuid.size());
    if (!image_.read(descriptor, std::span(uuid).first(taken))) return {};
    return uuid;
  }

  ImageBytes& image_;
  const Layout& layout_;
  std::endian order_;
  int notesSeen_ = 0;
};

}  // namespace

std::optional<BuildUUID> elfBuildID(ImageBytes& image) {
  std::array<std::uint8_t, 6> ident;
  if (!image.read(0, ident)) return {};
  if (!std::ranges::equal(std::span(ident).first(4), std::string_view{"\177ELF"})) return {};
  const auto [fileClass, data] = std::pair{ident[4], ident[5]};
  if (fileClass < 1 || fileClass > 2 || data < 1 || data > 2) return {};
  const std::endian order = data == 1 ? std::endian::little : std::endian::big;
  return ELFReader(image, fileClass == 1 ? k32 : k64, order).buildID();
}

std::optional<BuildUUID> buildIdentity(ImageBytes& image) {
#if defined(__aarch64__)
  constexpr std::uint32_t processor = kMachOProcessorARM64;
#else
  constexpr std::uint32_t processor = kMachOProcessorX86_64;
#endif
  if (const auto elf = elfBuildID(image)) return elf;
  return machOUUID(image, processor);
}

}  // namespace tavi::mcp

#include "mcp/build_identity.h"

#include <gtest/gtest.h>

#include "image_builder.h"

namespace tavi::mcp {
namespace {

using namespace testing;
using std::endian;

std::optional<std::string> text(const std::optional<BuildUUID>& uuid) {
  if (!uuid) return {};
  return std::string(uuid->begin(), uuid->end());
}

std::optional<std::string> machO(std::string_view bytes,
                                 std::uint32_t processor = kMachOProcessorX86_64) {
  MemoryImage image(bytes);
  return text(machOUUID(image, processor));
}

std::optional<std::string> elf(std::string_view bytes) {
  MemoryImage image(bytes);
  return text(elfBuildID(image));
}

/// A fat file with a slice for each processor. The slices differ in their UUIDs only.
std::string fatMachO(bool wide) {
  const std::size_t entry = wide ? 32 : 20, first = 8 + 2 * entry;
  const std::string arm = thinMachO(1, uuidCommand("ARM64-ARM64-ARM6"));
  Bytes fat(endian::big);
  fat.words({wide ? 0xCAFEBABFu : 0xCAFEBABEu, 2});
  const std::pair<std::uint32_t, std::uint64_t> slices[] = {
      {kMachOProcessorARM64, first}, {kMachOProcessorX86_64, first + arm.size()}};
  for (const auto& [processor, offset] : slices) {
    fat.words({processor, 3}).number(offset, wide ? 8 : 4).number(arm.size(), wide ? 8 : 4);
    fat.zerosTo(fat.size() + (wide ? 8 : 4));
  }
  return fat.text(arm).text(thinMachO(1, uuidCommand()));
}

const std::string kOtherCommand = Bytes(endian::little).words({2, 12, 7});

TEST(MachO, FindsTheUUIDBehindOtherCommands) {
  EXPECT_EQ(machO(thinMachO(3, kOtherCommand + kOtherCommand + uuidCommand())), kUUIDText);
}

TEST(MachO, LooksAtNoMoreCommandsThanTheHeaderCounts) {
  EXPECT_EQ(machO(thinMachO(1, kOtherCommand + uuidCommand())), std::nullopt);
}

TEST(MachO, TakesTheSliceOfTheProcessor) {
  for (const bool wide : {false, true}) {
    const std::string fat = fatMachO(wide);
    EXPECT_EQ(machO(fat, kMachOProcessorX86_64), kUUIDText) << wide;
    EXPECT_EQ(machO(fat, kMachOProcessorARM64), "ARM64-ARM64-ARM6") << wide;
    EXPECT_EQ(machO(fat, 7), std::nullopt) << wide;
  }
}

TEST(MachO, EndsTheSearchAtABadCommandLength) {
  for (const std::uint32_t length : {0u, 7u, 1000u, 0xffffffffu}) {
    const std::string bad = Bytes(endian::little).words({2, length});
    EXPECT_EQ(machO(thinMachO(0xffffffff, bad + uuidCommand())), std::nullopt) << length;
  }
}

TEST(MachO, DoesNotReadOtherForms) {
  for (const std::uint32_t magic : {0xFEEDFACEu, 0xCEFAEDFEu, 0xCFFAEDFEu, 0x0u})
    EXPECT_EQ(machO(std::string(Bytes(endian::little).words({magic, 0, 0, 0, 1, 0, 0, 0})) +
                    uuidCommand()),
              std::nullopt)
        << magic;
}

TEST(ELF, ReadsEitherClassAndByteOrder) {
  for (const endian order : {endian::little, endian::big}) {
    const char data = order == endian::little ? 1 : 2;
    const std::string narrow = Bytes(order)
                                   .text({"\177ELF\1", 5})
                                   .text({&data, 1})
                                   .zerosTo(28)
                                   .number(52, 4)
                                   .zerosTo(42)
                                   .number(32, 2)
                                   .number(1, 2)
                                   .zerosTo(52)
                                   .words({4, 84, 0, 0, 32, 0, 0, 4})
                                   .words({4, 16, 3})
                                   .text({"GNU\0", 4})
                                   .text(kUUIDText);
    EXPECT_EQ(elf(narrow), kUUIDText);
  }
  EXPECT_EQ(elf(elfFile(kUUIDText)), kUUIDText);
}

TEST(ELF, FitsTheBuildIDToSixteenBytes) {
  EXPECT_EQ(elf(elfFile("0123456789abcdefXYZ!")), kUUIDText);
  EXPECT_EQ(elf(elfFile("01234567")), std::string("01234567\0\0\0\0\0\0\0\0", 16));
  EXPECT_EQ(elf(elfFile("")), std::nullopt);
}

/// Replaces the note of `elfFile` with three: one with another name but the same type, one of
/// another type with an odd size, and the build id.
std::string withOtherNotesBefore(std::uint64_t alignment) {
  Bytes notes(endian::little);
  const auto align = [&] { notes.zerosTo((notes.size() + alignment - 1) & ~(alignment - 1)); };
  notes.words({3, 4, 3}).text({"Go\0", 3});
  align();
  notes.text("miss");
  align();
  notes.words({4, 5, 5}).text({"GNU\0", 4}).text("other");
  align();
  notes.words({4, 16, 3}).text({"GNU\0", 4}).text(kUUIDText);
  std::string file = elfFile("");
  file.resize(120);
  file[96] = static_cast<char>(notes.size());
  file[112] = static_cast<char>(alignment);
  return file + std::string(notes);
}

TEST(ELF, PassesOverOtherNotes) {
  EXPECT_EQ(elf(withOtherNotesBefore(4)), kUUIDText);
  EXPECT_EQ(elf(withOtherNotesBefore(8)), kUUIDText);
}

TEST(ELF, RefusesHeadersThatPointNowhere) {
  const std::string good = elfFile(kUUIDText);
  const auto with = [&](std::size_t at, std::string_view bytes) {
    return std::string(good).replace(at, bytes.size(), bytes);
  };
  const std::string far(8, '\xff');
  EXPECT_EQ(elf(with(32, far)), std::nullopt) << "segment table";
  EXPECT_EQ(elf(with(54, {"\1\0", 2})), std::nullopt) << "segment entry size";
  EXPECT_EQ(elf(with(56, {"\xff\xff", 2})), std::nullopt) << "count kept elsewhere";
  EXPECT_EQ(elf(with(72, far)), std::nullopt) << "note segment";
  EXPECT_EQ(elf(with(96, far)), std::nullopt) << "note segment's size";
  EXPECT_EQ(elf(with(120, far.substr(4))), std::nullopt) << "name length";
  EXPECT_EQ(elf(with(124, far.substr(4))), std::nullopt) << "descriptor length";
  EXPECT_EQ(elf(with(4, "\3")), std::nullopt) << "class";
  EXPECT_EQ(elf(with(5, {"\0", 1})), std::nullopt) << "byte order";
}

TEST(ELF, GivesUpOnEndlessNotes) {
  // 65,534 segments, each over the same 12 MB of empty notes.
  const std::uint64_t begin = 64 + 65534 * 56;
  const std::string notes(12 << 20, '\0');
  Bytes file(endian::little);
  file.text({"\177ELF\2\1", 6}).zerosTo(32).number(64, 8).zerosTo(54).number(56, 2);
  file.number(65534, 2).zerosTo(64);
  for (int i = 0; i < 65534; ++i)
    file.words({4, 4})
        .number(begin, 8)
        .number(0, 8)
        .number(0, 8)
        .number(notes.size(), 8)
        .number(0, 8)
        .number(4, 8);
  const std::string bytes = std::string(file) + notes;
  MemoryImage image(bytes);
  EXPECT_EQ(elfBuildID(image), std::nullopt);
  EXPECT_LT(image.reads, 100'000);
}

TEST(BuildIdentity, TakesEitherFormat) {
  for (const std::string& bytes : {elfFile(kUUIDText), thinMachO(1, uuidCommand())}) {
    MemoryImage image(bytes);
    EXPECT_EQ(text(buildIdentity(image)), kUUIDText);
  }
}

}  // namespace
}  // namespace tavi::mcp

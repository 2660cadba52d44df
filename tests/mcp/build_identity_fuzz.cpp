#include <algorithm>

#include "image_builder.h"
#include "support/fuzzing.h"

// Fuzzes the readers of executable files: an identity consists of bytes of the file (padded with
// zeros), is the same each time, and takes a number of reads that the file's size bounds.

namespace {

using namespace tavi::mcp;
using support::require;

/// The reader stops after 4096 notes and makes three reads for each.
constexpr std::size_t kMostReads = 3 * 4096 + 64;

template <class Reader>
void check(std::string_view bytes, Reader read) {
  testing::MemoryImage image(bytes);
  const std::optional<BuildUUID> found = read(image);
  // The shortest header is a load command of 8 bytes; a segment table has at most 65535 entries.
  require(static_cast<std::size_t>(image.reads) <= bytes.size() / 8 + 65'536 + kMostReads);
  testing::MemoryImage same(bytes);
  require(read(same) == found);
  if (!found) return;
  const auto last = std::find_if(found->rbegin(), found->rend(), [](auto byte) { return byte; });
  const auto length = static_cast<std::size_t>(found->rend() - last);
  const std::string_view identity(reinterpret_cast<const char*>(found->data()), length);
  require(bytes.find(identity) != std::string_view::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes = support::fuzzed(data, size);
  check(bytes, [](ImageBytes& image) { return elfBuildID(image); });
  check(bytes, [](ImageBytes& image) { return buildIdentity(image); });
  for (const std::uint32_t processor : {kMachOProcessorX86_64, kMachOProcessorARM64}) {
    check(bytes, [&](ImageBytes& image) { return machOUUID(image, processor); });
  }
  return 0;
}

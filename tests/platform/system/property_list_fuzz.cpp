#include <cstddef>
#include <cstdint>

#include "platform/system/preferences.h"

// libFuzzer (clang only): fuzz_property_list [corpus folder] -max_total_time=60
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  platform::system::parsePropertyList({reinterpret_cast<const char*>(data), size});
  return 0;
}

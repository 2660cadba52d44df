#include <malloc.h>

#include <string>
#include <vector>

#include "cli/tavi_cli.h"
#include "store/refresh_bridge.h"

namespace {

/// Has large blocks go back to the system when they are freed. By default glibc keeps them, up to
/// ever larger ones from the first that is freed on, in a heap that seldom shrinks: a write to a
/// note of 7 MB with many links then needs 41 MB instead of 28. Other commands take the same time.
void returnLargeBlocks() {
  mallopt(M_MMAP_THRESHOLD, 512 * 1024);
}

}  // namespace

int main(int argc, char** argv) {
  returnLargeBlocks();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (const auto exitCode = tavi::TaviCLI::main(arguments)) return *exitCode;
  tavi::TaviCLIBridge::requestAppRefresh();
  return 0;
}

#include <string>
#include <vector>

#include "cli/tavi_cli.h"
#include "store/refresh_bridge.h"

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  if (const auto exitCode = tavi::TaviCLI::main(arguments)) return *exitCode;
  tavi::TaviCLIBridge::requestAppRefresh();
  return 0;
}

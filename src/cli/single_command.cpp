#include "cli/single_command.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <string>
#include <system_error>
#include <vector>

#include "ArgumentParser/command_line.h"
#include "cli/standard_streams.h"
#include "cli/version.h"

namespace tavi {

int runSingleCommand(const ArgumentParser::CommandType& command, int argc, char** argv) {
  prepareStreams();
  const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
  // Handled before parsing, which would complain about missing arguments.
  if (arguments == std::vector<std::string>{"--version"}) {
    std::puts(versionString().c_str());
    return 0;
  }
  try {
    ArgumentParser::parseAsRoot(command, arguments)->run();
    return 0;
  } catch (...) {
    ArgumentParser::exitWithError(command, std::current_exception());
  }
}

void printOutput(std::string_view text) {
  const bool isOut = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if ((!isOut || std::fflush(stdout) != 0) && errno != EPIPE)
    throw std::system_error(errno, std::generic_category(), "Could not write the output");
}

}  // namespace tavi

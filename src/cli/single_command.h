#pragma once

#include <string_view>

#include "ArgumentParser/parsable_command.h"

namespace tavi {

/// The whole of a program that is one command: serves its version and help, else parses and runs
/// it. The process's exit code: 0, 64 for a line that cannot be taken, 1 or what the command
/// throws.
int runSingleCommand(const ArgumentParser::CommandType& command, int argc, char** argv);

/// Writes to standard output at once. A reader that has gone away is no fault; throws
/// std::system_error for every other one.
void printOutput(std::string_view text);

}  // namespace tavi

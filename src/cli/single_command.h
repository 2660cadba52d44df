#pragma once

#include <string_view>

#include "ArgumentParser/parsable_command.h"

namespace tavi {

/// The main function of a program with a single command: shows its version or help, or parses and
/// runs it. Returns 0; on an error prints the message and exits with 64 for an invalid command
/// line, the code of an ArgumentParser::ExitCode, or 1.
int runSingleCommand(const ArgumentParser::CommandType& command, int argc, char** argv);

/// Writes to standard output and flushes. Ignores a closed pipe; throws std::system_error for other
/// errors.
void printOutput(std::string_view text);

}  // namespace tavi

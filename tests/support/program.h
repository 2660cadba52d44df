#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace support {

/// What a run of the built program left behind.
struct ProgramResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string output;
  std::string errors;
};

/// Runs the built program, or another, with HOME and the rest of the environment as they are.
/// `input` stands on its standard input, which is a pipe. Any sizes of input and output.
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input = {},
                         const char* program = TAVICLI_PROGRAM);

/// Starts it with `input` on its standard input and its output thrown away, kills it (SIGKILL) when
/// so many microseconds have passed, and gives its exit code, or -1 when the kill came first.
int runAndKill(const std::vector<std::string>& arguments, const std::filesystem::path& input,
               int microseconds);

}  // namespace support

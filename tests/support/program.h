#pragma once

#include <string>
#include <vector>

namespace support {

/// What a run of the built program left behind.
struct ProgramResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string output;
  std::string errors;
};

/// Runs the built program with HOME and the rest of the environment as they are. `input` stands on
/// its standard input, which is a pipe. Any sizes of input and output.
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input = {});

}  // namespace support

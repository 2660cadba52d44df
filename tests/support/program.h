#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace support {

/// The result of one run of the built program.
struct ProgramResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string output;
  std::string errors;
};

/// The program to run: the built one, unless a test substitutes a copy.
std::filesystem::path& programPath();

/// Runs the program, or another, in the current environment. `input` arrives on standard input,
/// which is a pipe. Input and output may be of any size.
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input = {},
                         const char* program = programPath().c_str());

/// Starts the built program, or another, with `input` on its standard input, discards its output,
/// and sends SIGKILL after so many microseconds. Returns the exit code, or -1 if the signal came
/// first.
int runAndKill(const std::vector<std::string>& arguments, const std::filesystem::path& input,
               int microseconds, const char* program = programPath().c_str());

/// Whether `body` passes in a child process: for changes that cannot be undone, such as a limit.
bool passesInItsOwnProcess(const std::function<void()>& body);

/// The same as a user who is subject to permissions and owns `home` with everything in it. Root
/// becomes user `user`, which need not exist in the password database; other users stay themselves.
bool passesAsOrdinaryUser(const std::filesystem::path& home, const std::function<void()>& body,
                          uid_t user = 65534);

}  // namespace support

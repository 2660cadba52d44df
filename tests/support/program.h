#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace support {

/// What a run of the built program left behind.
struct ProgramResult {
  int exitCode = -1;  ///< -1: ended by a signal
  std::string output;
  std::string errors;
};

/// The program that is run: the built one, unless a test puts a copy in its place.
std::filesystem::path& programPath();

/// Runs the program, or another, with HOME and the rest of the environment as they are. `input`
/// stands on its standard input, which is a pipe. Any sizes of input and output.
ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input = {},
                         const char* program = programPath().c_str());

/// Starts the program, or another, with `input` on its standard input and its output thrown away,
/// kills it (SIGKILL) when so many microseconds have passed, and gives its exit code, or -1 when
/// the kill came first.
int runAndKill(const std::vector<std::string>& arguments, const std::filesystem::path& input,
               int microseconds, const char* program = programPath().c_str());

/// Whether `body` passes in a process of its own: for what cannot be undone, such as a limit.
bool passesInItsOwnProcess(const std::function<void()>& body);

/// The same as a user whom permissions bind, and whose home is `home`, with all that is in it. The
/// superuser becomes user `user`, who may be one that the password database does not know; another
/// stays who he is.
bool passesAsOrdinaryUser(const std::filesystem::path& home, const std::function<void()>& body,
                          uid_t user = 65534);

}  // namespace support

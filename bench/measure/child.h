#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace measure {

/// Splits an argument list into commands, each introduced by "--" and null-terminated.
std::vector<std::vector<char*>> commands(char** arguments);

/// Raises the priority of this process and its children, if permitted.
void raisePriority();

/// The time of the monotonic clock.
std::int64_t nanoseconds();

/// A child process whose standard output is a pipe. Any failure ends this process.
class Child {
 public:
  /// `withInput`: standard input is a pipe too; otherwise it is /dev/null.
  Child(std::vector<char*>& command, bool withInput);

  /// Writes to the child's standard input.
  void send(const std::string& bytes) const;
  /// Reads one line, or to the end of the output. Both return the number of bytes.
  std::size_t readLine();
  std::size_t readAll();
  /// Waits for the end of the process. Returns its maximum resident memory in KiB.
  long finish();

 private:
  std::size_t readSome();

  const char* name_;
  pid_t process_ = 0;
  int input_ = -1;
  int output_ = -1;
  std::vector<char> buffer_;
};

}  // namespace measure

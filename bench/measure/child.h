#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace measure {

/// The commands of an argument list in which each begins with "--".
std::vector<std::vector<char*>> commands(char** arguments);

/// Puts this process, and so its children, before others where that is allowed.
void raisePriority();

std::int64_t nanoseconds();

/// A child process with a pipe at its standard output. What goes wrong ends the process.
class Child {
 public:
  /// `withInput`: a pipe at its standard input too; otherwise there is nothing to read there.
  Child(std::vector<char*>& command, bool withInput);

  /// Writes to the child's standard input.
  void send(const std::string& bytes) const;
  /// Reads until the bytes end with a newline, or to the end of the output. Keeps only their
  /// number.
  std::size_t readLine();
  std::size_t readAll();
  /// Waits for its end. Its largest resident memory, in KiB.
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

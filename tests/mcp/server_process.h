#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pipe.h"

namespace tavi::mcp::testing {

/// `program mcp-server` as a client runs it: pipes for its streams, and an environment of HOME and
/// PATH alone.
class ServerProcess {
 public:
  ServerProcess(const std::string& program, const std::string& home, const std::string& path);
  /// Ends the process if it is still there.
  ~ServerProcess();

  void send(std::string_view line) { input_.write(std::string(line) + "\n"); }
  /// The next line; empty at the end of output.
  std::string receive();
  std::string ask(std::string_view line) { return send(line), receive(); }

  int id() const { return process_; }

  /// Closes the server's input and gives its exit status, -1 for an end by a signal.
  int finish();

 private:
  Pipe input_, output_;
  std::string received_;
  int process_ = -1;
};

/// Runs a program to its end with `input`. Its output and nothing of its errors.
std::string outputOf(const std::vector<std::string>& command, const std::string& home,
                     std::string_view input = "");

}  // namespace tavi::mcp::testing

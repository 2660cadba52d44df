#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "pipe.h"

namespace tavi::mcp::testing {

/// Runs `program mcp-server` like a client: over pipes, with only HOME and PATH in the environment.
class ServerProcess {
 public:
  ServerProcess(const std::string& program, const std::string& home, const std::string& path);
  /// Kills the process if it still runs.
  ~ServerProcess();

  void send(std::string_view line) { input_.write(std::string(line) + "\n"); }
  /// The next line; empty at the end of output.
  std::string receive();
  std::string ask(std::string_view line) { return send(line), receive(); }

  int id() const { return process_; }

  /// Closes the server's input and returns its exit status, or -1 if a signal ended it.
  int finish();

 private:
  Pipe input_, output_;
  std::string received_;
  int process_ = -1;
};

/// Runs a program with `input` and returns its standard output.
std::string outputOf(const std::vector<std::string>& command, const std::string& home,
                     std::string_view input = "");

}  // namespace tavi::mcp::testing

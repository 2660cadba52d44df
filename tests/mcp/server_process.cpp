#include "server_process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <stdexcept>

namespace tavi::mcp::testing {
namespace {

int spawn(std::vector<std::string> command, std::vector<std::string> environment, int input,
          int output) {
  const auto pointers = [](std::vector<std::string>& texts) {
    std::vector<char*> all;
    for (std::string& text : texts) all.push_back(text.data());
    all.push_back(nullptr);
    return all;
  };
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, input, 0);
  ::posix_spawn_file_actions_adddup2(&actions, output, 1);
  int process = -1;
  const int failure = ::posix_spawn(&process, command[0].c_str(), &actions, nullptr,
                                    pointers(command).data(), pointers(environment).data());
  ::posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) throw std::runtime_error("cannot run " + command[0]);
  return process;
}

int exitStatus(int process) {
  int status = 0;
  ::waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

ServerProcess::ServerProcess(const std::string& program, const std::string& home,
                             const std::string& path)
    : process_(spawn({program, "mcp-server"}, {"HOME=" + home, "PATH=" + path}, input_.reader(),
                     output_.writer())) {
  input_.closeReader();
  output_.closeWriter();
}

ServerProcess::~ServerProcess() {
  if (process_ < 0) return;
  ::kill(process_, SIGKILL);
  exitStatus(process_);
}

std::string ServerProcess::receive() {
  char piece[65536];
  std::size_t end = 0;
  while ((end = received_.find('\n')) == std::string::npos) {
    const ssize_t count = ::read(output_.reader(), piece, sizeof piece);
    if (count <= 0) return {};
    received_.append(piece, static_cast<std::size_t>(count));
  }
  const std::string line = received_.substr(0, end);
  received_.erase(0, end + 1);
  return line;
}

int ServerProcess::finish() {
  input_.closeWriter();
  return exitStatus(std::exchange(process_, -1));
}

std::string outputOf(const std::vector<std::string>& command, const std::string& home,
                     std::string_view input) {
  Pipe in, out;
  in.write(input);
  in.closeWriter();
  const int process =
      spawn(command, {"HOME=" + home, "PATH=/usr/bin:/bin"}, in.reader(), out.writer());
  out.closeWriter();
  const std::string output = out.readAll();
  exitStatus(process);
  return output;
}

}  // namespace tavi::mcp::testing

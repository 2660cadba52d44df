#include "support/program.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <stdexcept>

namespace support {
namespace {

struct Pipe {
  Pipe() {
    if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeEnd(std::size_t end) {
    if (ends[end] >= 0) close(ends[end]);
    ends[end] = -1;
  }
  std::array<int, 2> ends{-1, -1};
};

/// Reads the available bytes; closes the pipe at the end of input.
void drain(Pipe& from, std::string& into) {
  std::array<char, 65536> buffer;
  const ssize_t count = read(from.ends[0], buffer.data(), buffer.size());
  if (count > 0) {
    into.append(buffer.data(), static_cast<std::size_t>(count));
  } else if (count == 0) {
    from.closeEnd(0);
  }
}

void give(const std::filesystem::path& path, uid_t user) {
  if (lchown(path.c_str(), user, user) != 0)
    throw std::runtime_error("no owner for " + path.string());
}

[[noreturn]] void become(const char* program, const std::vector<std::string>& arguments, int in,
                         int out, int err) {
  dup2(in, STDIN_FILENO);
  dup2(out, STDOUT_FILENO);
  dup2(err, STDERR_FILENO);
  std::vector<char*> argv{const_cast<char*>(program)};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  execv(program, argv.data());
  _exit(127);
}

}  // namespace

std::filesystem::path& programPath() {
  static std::filesystem::path path = TAVICLI_PROGRAM;
  return path;
}

ProgramResult runProgram(const std::vector<std::string>& arguments, const std::string& input,
                         const char* program) {
  std::signal(SIGPIPE, SIG_IGN);  // the program need not read all of its input
  Pipe in;
  Pipe out;
  Pipe err;
  const pid_t child = fork();
  if (child == 0) become(program, arguments, in.ends[0], out.ends[1], err.ends[1]);
  in.closeEnd(0);
  out.closeEnd(1);
  err.closeEnd(1);

  ProgramResult result;
  std::size_t written = 0;
  if (input.empty()) in.closeEnd(1);
  while (out.ends[0] >= 0 || err.ends[0] >= 0) {
    std::array<pollfd, 3> waiting{
        {{in.ends[1], POLLOUT, 0}, {out.ends[0], POLLIN, 0}, {err.ends[0], POLLIN, 0}}};
    poll(waiting.data(), waiting.size(), -1);
    if (waiting[0].revents != 0) {
      const std::size_t piece = std::min<std::size_t>(input.size() - written, 65536);
      const ssize_t count = write(in.ends[1], input.data() + written, piece);
      if (count > 0) written += static_cast<std::size_t>(count);
      if (count <= 0 || written == input.size()) in.closeEnd(1);
    }
    if (waiting[1].revents != 0) drain(out, result.output);
    if (waiting[2].revents != 0) drain(err, result.errors);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  return result;
}

int runAndKill(const std::vector<std::string>& arguments, const std::filesystem::path& input,
               int microseconds, const char* program) {
  const pid_t child = fork();
  if (child == 0) {
    const int in = open(input.c_str(), O_RDONLY);
    const int nowhere = open("/dev/null", O_WRONLY);
    become(program, arguments, in, nowhere, nowhere);
  }
  usleep(static_cast<useconds_t>(microseconds));
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool passesInItsOwnProcess(const std::function<void()>& body) {
  std::fflush(nullptr);  // otherwise the child would print the buffers again
  const pid_t child = fork();
  if (child == 0) {
    int code = 1;
    try {
      body();
      code = testing::Test::HasFailure() ? 1 : 0;
    } catch (const std::exception& error) {
      std::fprintf(stderr, "%s\n", error.what());
    }
    std::fflush(nullptr);
    _exit(code);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool passesAsOrdinaryUser(const std::filesystem::path& home, const std::function<void()>& body,
                          uid_t user) {
  if (geteuid() != 0) return passesInItsOwnProcess(body);
  // Other users may not have access to the build folder.
  const std::filesystem::path program = home / "tavicli";
  std::filesystem::copy_file(programPath(), program,
                             std::filesystem::copy_options::overwrite_existing);
  give(home, user);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(home)) {
    give(entry.path(), user);
  }
  return passesInItsOwnProcess([&] {
    if (setgroups(0, nullptr) != 0 || setgid(user) != 0 || setuid(user) != 0) {
      throw std::runtime_error("the user cannot be changed");
    }
    programPath() = program;
    body();
  });
}

}  // namespace support

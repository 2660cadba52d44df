#include "child.h"

#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

extern char** environ;

namespace measure {
namespace {

[[noreturn]] void fail(const char* what, const char* name) {
  std::fprintf(stderr, "%s: %s: %s\n", name, what, std::strerror(errno));
  std::exit(1);
}

}  // namespace

std::vector<std::vector<char*>> commands(char** arguments) {
  std::vector<std::vector<char*>> result;
  for (char** argument = arguments; *argument != nullptr; ++argument) {
    if (std::strcmp(*argument, "--") == 0) {
      if (!result.empty()) result.back().push_back(nullptr);
      result.emplace_back();
    } else if (!result.empty()) {
      result.back().push_back(*argument);
    }
  }
  if (!result.empty()) result.back().push_back(nullptr);
  return result;
}

void raisePriority() {
  // A real-time process runs as soon as it is ready. With only a nice value, others finish their
  // time slice first, which takes longer than most measurements here.
  sched_param parameter{};
  parameter.sched_priority = 1;
  if (sched_setscheduler(0, SCHED_FIFO, &parameter) != 0) setpriority(PRIO_PROCESS, 0, -20);
}

std::int64_t nanoseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

Child::Child(std::vector<char*>& command, bool withInput) : name_(command[0]), buffer_(1 << 18) {
  int in[2];
  int out[2];
  if (pipe2(out, O_CLOEXEC) != 0 || (withInput && pipe2(in, O_CLOEXEC) != 0)) fail("pipe", name_);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
  if (withInput) {
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
  } else {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  }
  errno = posix_spawnp(&process_, name_, &actions, nullptr, command.data(), environ);
  if (errno != 0) fail("could not be started", name_);
  posix_spawn_file_actions_destroy(&actions);
  close(out[1]);
  output_ = out[0];
  if (!withInput) return;
  close(in[0]);
  input_ = in[1];
}

void Child::send(const std::string& bytes) const {
  for (std::size_t at = 0; at < bytes.size();) {
    const ssize_t written = write(input_, bytes.data() + at, bytes.size() - at);
    if (written < 0) fail("took no input", name_);
    at += static_cast<std::size_t>(written);
  }
}

std::size_t Child::readSome() {
  const ssize_t size = read(output_, buffer_.data(), buffer_.size());
  if (size < 0) fail("could not be read", name_);
  return static_cast<std::size_t>(size);
}

std::size_t Child::readLine() {
  std::size_t all = 0;
  for (std::size_t size; (size = readSome()) > 0;) {
    all += size;
    if (buffer_[size - 1] == '\n') return all;
  }
  std::fprintf(stderr, "%s: ended without an answer\n", name_);
  std::exit(1);
}

std::size_t Child::readAll() {
  std::size_t all = 0;
  for (std::size_t size; (size = readSome()) > 0;) all += size;
  return all;
}

long Child::finish() {
  if (input_ >= 0) close(input_);
  int status = 0;
  rusage usage{};
  wait4(process_, &status, 0, &usage);
  close(output_);
  if (status != 0) {
    std::fprintf(stderr, "%s: ended with status %d\n", name_, status);
    std::exit(1);
  }
  return usage.ru_maxrss;
}

}  // namespace measure

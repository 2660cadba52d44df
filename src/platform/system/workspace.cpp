#include "platform/system/workspace.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "platform/system/file_descriptor.h"

namespace platform::system {
namespace {

/// The attributes of the child process: standard streams on /dev/null, since its output is not
/// ours, and its own session, so that Ctrl-C at the terminal does not reach it.
class SpawnAttributes {
 public:
  SpawnAttributes() {
    posix_spawn_file_actions_init(&actions_);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID);
  }
  ~SpawnAttributes() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;

  const posix_spawn_file_actions_t* actions() const { return &actions_; }
  const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
};

/// Whether the process ends within `patience`.
bool endsWithin(std::chrono::milliseconds patience, pid_t process) {
  const FileDescriptor descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
  if (!descriptor) return true;  // old kernels have no pidfd_open; the caller's waitpid(2) waits
  pollfd end{descriptor.get(), POLLIN, 0};
  const auto deadline = std::chrono::steady_clock::now() + patience;
  int ready = -1;
  do {
    const auto left = deadline - std::chrono::steady_clock::now();
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    ready = poll(&end, 1, static_cast<int>(std::max<std::int64_t>(0, milliseconds)));
  } while (ready < 0 && errno == EINTR);
  return ready != 0;
}

bool succeeded(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace

bool openURL(const std::string& url) {
  return openURLWithin(std::chrono::seconds(2), url);
}

bool openURLWithin(std::chrono::milliseconds patience, const std::string& url) {
  while (waitpid(-1, nullptr, WNOHANG) > 0) {  // reaps processes that earlier calls left running
  }
  std::string program = "xdg-open";
  std::string argument = url;
  char* const arguments[] = {program.data(), argument.data(), nullptr};
  pid_t process = 0;
  const SpawnAttributes spawn;
  if (posix_spawnp(&process, program.c_str(), spawn.actions(), spawn.attributes(), arguments,
                   environ) != 0) {
    return false;
  }
  return !endsWithin(patience, process) || succeeded(process);
}

}  // namespace platform::system

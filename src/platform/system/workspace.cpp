#include "platform/system/workspace.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace platform::system {
namespace {

/// The standard streams on /dev/null: what the desktop's program prints is not our output.
class SilentStreams {
 public:
  SilentStreams() {
    posix_spawn_file_actions_init(&actions_);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", O_RDWR, 0);
    }
  }
  ~SilentStreams() { posix_spawn_file_actions_destroy(&actions_); }
  SilentStreams(const SilentStreams&) = delete;
  SilentStreams& operator=(const SilentStreams&) = delete;

  const posix_spawn_file_actions_t* actions() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

}  // namespace

bool openURL(const std::string& url) {
  std::string program = "xdg-open";
  std::string argument = url;
  char* const arguments[] = {program.data(), argument.data(), nullptr};
  pid_t process = 0;
  const SilentStreams streams;
  if (posix_spawnp(&process, program.c_str(), streams.actions(), nullptr, arguments, environ) !=
      0) {
    return false;
  }
  int status = 0;
  while (waitpid(process, &status, 0) < 0) {
    if (errno != EINTR) return false;
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

}  // namespace platform::system

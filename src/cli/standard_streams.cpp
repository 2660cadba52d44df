#include "cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

namespace tavi {

void prepareStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // open(2) returns the lowest free descriptor, which is this one.
    if (::fcntl(descriptor, F_GETFD) == -1) (void)::open("/dev/null", O_RDONLY);
  }
  // Not SIG_IGN, which child processes would inherit.
  std::signal(SIGPIPE, [](int) {});
  std::signal(SIGXFSZ, [](int) {});
}

}  // namespace tavi

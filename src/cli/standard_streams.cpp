#include "cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <initializer_list>

namespace tavi {

void prepareStreams() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // The lowest free descriptor is the one that open(2) takes.
    if (::fcntl(descriptor, F_GETFD) == -1) (void)::open("/dev/null", O_RDONLY);
  }
  // Not SIG_IGN, which a program that we start would inherit.
  std::signal(SIGPIPE, [](int) {});
  std::signal(SIGXFSZ, [](int) {});
}

}  // namespace tavi

#include "cli/standard_input.h"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "cli/output/output_formatter.h"
#include "cli/session.h"
#include "platform/text/utf8.h"

namespace tavi {

namespace {

/// What a regular file holds; 0 where that cannot be told.
std::size_t fileSize() {
  struct stat status {};
  const bool regular = ::fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
  return regular ? static_cast<std::size_t>(status.st_size) : 0;
}

/// As read(2), which waits here in any case. 0, too, where the descriptor is not open for reading.
std::size_t readSome(char* bytes, std::size_t size) {
  while (true) {
    const ssize_t count = ::read(STDIN_FILENO, bytes, size);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EBADF) return 0;
    if (errno == EAGAIN) {  // a descriptor that someone made non-blocking
      pollfd ready{.fd = STDIN_FILENO, .events = POLLIN, .revents = 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "Could not read the standard input");
    }
  }
}

}  // namespace

std::optional<std::string> readStdinData() {
  if (::isatty(STDIN_FILENO)) return std::nullopt;
  constexpr std::size_t pipeSize = 64 * 1024;
  std::string data;
  for (std::size_t chunk = fileSize() + pipeSize;; chunk = pipeSize) {
    const std::size_t size = data.size();
    data.resize(size + chunk);
    const std::size_t got = readSome(data.data() + size, chunk);
    data.resize(size + got);
    if (got == 0) return data;
  }
}

std::optional<std::string> textOrStdin(const std::optional<std::string>& option) {
  if (option) return OutputFormatter::unescape(*option);
  auto data = Session::current().readStdinData();
  if (data && !platform::text::isValidUTF8(*data)) data.reset();
  return data;
}

}  // namespace tavi

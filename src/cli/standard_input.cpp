#include "cli/standard_input.h"

#include <unistd.h>

#include <cerrno>

#include "cli/output/output_formatter.h"
#include "cli/session.h"
#include "platform/text/utf8.h"

namespace tavi {

std::optional<std::string> readStdinData() {
  if (::isatty(STDIN_FILENO)) return std::nullopt;
  constexpr std::size_t chunk = 64 * 1024;
  std::string data;
  while (true) {
    const std::size_t size = data.size();
    data.resize(size + chunk);
    const ssize_t got = ::read(STDIN_FILENO, data.data() + size, chunk);
    data.resize(size + static_cast<std::size_t>(got > 0 ? got : 0));
    if (got == 0 || (got < 0 && errno != EINTR)) return data;
  }
}

std::optional<std::string> textOrStdin(const std::optional<std::string>& option) {
  if (option) return OutputFormatter::unescape(*option);
  auto data = Session::current().readStdinData();
  if (data && !platform::text::isValidUTF8(*data)) data.reset();
  return data;
}

}  // namespace tavi

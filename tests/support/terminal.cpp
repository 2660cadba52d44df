#include "support/terminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace support {
namespace {

constexpr int kPatienceInMilliseconds = 20000;

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

}  // namespace

Terminal::Terminal(const std::vector<std::string>& command, const std::string& folder,
                   const Environment& environment) {
  std::vector<std::string> arguments = command;
  std::vector<std::string> variables;
  for (const auto& [name, value] : environment) variables.push_back(name + "=" + value);
  winsize size{.ws_row = 50, .ws_col = 200, .ws_xpixel = 0, .ws_ypixel = 0};
  process_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (process_ < 0) throw std::runtime_error("no terminal to be had");
  if (process_ > 0) return;
  if (chdir(folder.c_str()) == 0)
    execvpe(arguments[0].c_str(), pointers(arguments).data(), pointers(variables).data());
  _exit(127);
}

Terminal::~Terminal() {
  close(terminal_);
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
}

void Terminal::type(std::string_view keys) {
  while (!keys.empty()) {
    const ssize_t written = write(terminal_, keys.data(), keys.size());
    if (written < 0) throw std::runtime_error("the terminal is gone");
    keys.remove_prefix(static_cast<std::size_t>(written));
  }
}

std::string Terminal::readUntil(std::string_view mark) {
  for (;;) {
    if (const auto found = unread_.find(mark); found != unread_.npos) {
      std::string result = unread_.substr(0, found + mark.size());
      unread_.erase(0, result.size());
      return result;
    }
    pollfd waiting{.fd = terminal_, .events = POLLIN, .revents = 0};
    char buffer[4096];
    const ssize_t count = poll(&waiting, 1, kPatienceInMilliseconds) == 1
                              ? read(terminal_, buffer, sizeof buffer)
                              : -1;
    if (count <= 0)
      throw std::runtime_error("waited in vain for " + std::string(mark) + " behind " + unread_);
    unread_.append(buffer, static_cast<std::size_t>(count));
  }
}

}  // namespace support

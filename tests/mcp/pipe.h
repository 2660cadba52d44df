#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

namespace tavi::mcp::testing {

/// A pipe that closes its ends when destroyed. A writer blocks once it holds a megabyte.
class Pipe {
 public:
  Pipe() {
    if (::pipe2(ends_, O_CLOEXEC) != 0) std::abort();
    ::fcntl(ends_[1], F_SETPIPE_SZ, 1 << 20);
  }
  ~Pipe() { closeReader(), closeWriter(); }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  int reader() const { return ends_[0]; }
  int writer() const { return ends_[1]; }
  void closeReader() { close(ends_[0]); }
  void closeWriter() { close(ends_[1]); }

  bool write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t count = ::write(writer(), bytes.data(), bytes.size());
      if (count < 0) return false;
      bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }
  /// Reads to the end of input.
  std::string readAll() const {
    std::string all;
    char piece[65536];
    for (ssize_t count; (count = ::read(reader(), piece, sizeof piece)) > 0;)
      all.append(piece, static_cast<std::size_t>(count));
    return all;
  }
  /// Reads what has arrived so far, without blocking.
  std::string readAvailable() const {
    ::fcntl(reader(), F_SETFL, O_NONBLOCK);
    std::string all = readAll();
    ::fcntl(reader(), F_SETFL, 0);
    return all;
  }

 private:
  static void close(int& end) {
    if (const int open = std::exchange(end, -1); open >= 0) ::close(open);
  }
  int ends_[2] = {-1, -1};
};

}  // namespace tavi::mcp::testing

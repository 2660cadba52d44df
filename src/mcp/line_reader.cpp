#include "mcp/line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/text/utf8.h"

namespace tavi::mcp {
namespace {

constexpr std::size_t kUsualCapacity = 64 * 1024;

/// The bytes read, 0 at the end of input or when reading fails.
std::size_t readSome(int descriptor, char* into, std::size_t room) {
  while (true) {
    const ssize_t count = ::read(descriptor, into, room);
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno == EAGAIN) {  // a pipe that the client made non-blocking
      pollfd ready{.fd = descriptor, .events = POLLIN, .revents = 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return 0;
    }
  }
}

}  // namespace

std::optional<std::string_view> LineReader::next() {
  while (true) {
    const char* from = buffer_.get() + scanned_;
    if (const void* found = scanned_ < end_ ? std::memchr(from, '\n', end_ - scanned_) : nullptr) {
      const auto length = static_cast<const char*>(found) - (buffer_.get() + begin_);
      const std::string_view line(buffer_.get() + begin_, static_cast<std::size_t>(length));
      begin_ = scanned_ = begin_ + line.size() + 1;
      return repaired(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
    }
    scanned_ = end_;
    if (!fill()) break;
  }
  if (begin_ == end_) return {};
  const std::string_view rest(buffer_.get() + begin_, end_ - begin_);
  begin_ = end_;
  return repaired(rest);
}

bool LineReader::fill() {
  makeRoom();
  const std::size_t count = readSome(descriptor_, buffer_.get() + end_, capacity_ - end_);
  end_ += count;
  return count > 0;
}

/// Moves the begun line to the front, into a buffer that fits: larger while one long line comes
/// in, and of the usual size again after it.
void LineReader::makeRoom() {
  const std::size_t begun = end_ - begin_;
  const std::size_t wanted = std::max(kUsualCapacity, begun * 2);
  if (capacity_ < wanted || capacity_ > 4 * wanted) {
    auto roomier = std::make_unique_for_overwrite<char[]>(wanted);
    if (begun > 0) std::memcpy(roomier.get(), buffer_.get() + begin_, begun);
    buffer_ = std::move(roomier);
    capacity_ = wanted;
  } else if (begin_ > 0) {
    std::memmove(buffer_.get(), buffer_.get() + begin_, begun);
  }
  begin_ = 0;
  scanned_ = end_ = begun;
}

std::string_view LineReader::repaired(std::string_view line) {
  if (platform::text::isValidUTF8(line)) return line;
  return repaired_ = platform::text::replacingInvalidUTF8(line);
}

}  // namespace tavi::mcp

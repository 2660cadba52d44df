#include "bytes/byte_sink.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace tavi {

void ByteSink::flush() {
  const std::size_t size = std::exchange(used_, 0);
  if (size > 0) accept({buffer_.get(), size});
}

void ByteSink::makeRoom() {
  flush();
  if (buffer_) return;
  buffer_ = std::make_unique_for_overwrite<char[]>(bufferSize);
  capacity_ = bufferSize;
}

void ByteSink::appendPastBuffer(std::string_view bytes) {
  if (bytes.size() >= bufferSize) {
    flush();
    return accept(bytes);
  }
  makeRoom();
  append(bytes);
}

void DescriptorSink::accept(std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {  // another process made the descriptor non-blocking
      pollfd ready{.fd = descriptor_, .events = POLLOUT, .revents = 0};
      ::poll(&ready, 1, -1);
    } else if (errno == EPIPE) {
      throw OutputClosed();
    } else if (errno != EINTR) {
      throw std::system_error(errno, std::generic_category(), "Could not write the output");
    }
  }
}

}  // namespace tavi

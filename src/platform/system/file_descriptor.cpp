#include "platform/system/file_descriptor.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace platform::system {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
  if (this != &other) {
    reset();
    value_ = other.release();
  }
  return *this;
}

void FileDescriptor::reset() {
  if (value_ < 0) return;
  const int error = errno;
  ::close(release());
  errno = error;
}

bool FileDescriptor::close() {
  return ::close(release()) == 0;
}

std::ptrdiff_t readSome(int descriptor, char* into, std::size_t room) {
  while (true) {
    const ssize_t count = ::read(descriptor, into, room);
    if (count >= 0) return count;
    if (errno == EAGAIN) {
      pollfd ready{.fd = descriptor, .events = POLLIN, .revents = 0};
      ::poll(&ready, 1, -1);
    } else if (errno != EINTR) {
      return -1;
    }
  }
}

}  // namespace platform::system

#include "platform/system/notification_center.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "platform/system/directories.h"

namespace platform::system {
namespace {

/// The events of the directory that may mean a new modification time of the file. The directory is
/// watched because the file may not exist yet.
constexpr std::uint32_t kEvents = IN_ATTRIB | IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO;

[[noreturn]] void throwSystemError(int error) {
  throw std::system_error(error, std::generic_category(), "The data directory cannot be watched");
}

}  // namespace

void postNotification(const std::string& name) {
  const auto directory = applicationDataDirectory();
  if (!directory) return;
  const auto path = *directory / name;
  if (utimensat(AT_FDCWD, path.c_str(), nullptr, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT) {
    return;
  }
  // Opened for reading only, so that closing it does not cause a second event.
  const FileDescriptor made(
      open(path.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
}

NotificationObserver::NotificationObserver(std::string name, std::function<void()> handler)
    : name_(std::move(name)), handler_(std::move(handler)) {
  const auto directory = applicationDataDirectory();
  if (!directory) throwSystemError(ENOENT);
  inotify_ = FileDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
  if (!inotify_ || inotify_add_watch(inotify_.get(), directory->c_str(), kEvents) < 0) {
    throwSystemError(errno);
  }
}

void NotificationObserver::deliver() {
  bool posted = false;
  alignas(inotify_event) char buffer[4096];
  for (;;) {
    const ssize_t length = read(inotify_.get(), buffer, sizeof buffer);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) break;
    for (const char* at = buffer; at < buffer + length;) {
      inotify_event event;
      std::memcpy(&event, at, sizeof event);
      // If the queue overflowed, the event may have been lost: assume that it was posted.
      posted = posted || (event.mask & IN_Q_OVERFLOW) != 0 ||
               (event.len > 0 && name_ == at + sizeof event);
      at += sizeof event + event.len;
    }
  }
  if (posted) handler_();
}

}  // namespace platform::system

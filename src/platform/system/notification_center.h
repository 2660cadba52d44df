#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/system/file_descriptor.h"

namespace platform::system {

// Named events between processes, without payload or acknowledgement. Posting the event NAME sets
// the modification time of the empty file NAME in the application's data directory.

/// Posts the event. Creates the file (mode 0600) if necessary. Never waits, and ignores failures,
/// such as a missing data directory.
void postNotification(const std::string& name);

/// Watches for an event with inotify(7). The owner waits until `descriptor()` is readable and then
/// calls `deliver()`, which calls the handler once for all events since the last time.
class NotificationObserver {
 public:
  /// Throws std::system_error if the data directory cannot be watched.
  NotificationObserver(std::string name, std::function<void()> handler);

  int descriptor() const { return inotify_.get(); }  ///< owned by the observer
  void deliver();

 private:
  std::string name_;
  std::function<void()> handler_;
  FileDescriptor inotify_;
};

}  // namespace platform::system

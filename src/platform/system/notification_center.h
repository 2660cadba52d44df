#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/system/file_descriptor.h"

namespace platform::system {

/// A bare named event between processes, without payload or acknowledgement. An event named NAME
/// is the modification time of the empty file NAME in the application's data directory.

/// Posts the event, creating the file (mode 0600) if needed. Does nothing when the data directory
/// is not there or cannot be written; never waits, never fails.
void postNotification(const std::string& name);

/// Watches for an event (inotify(7)). The owner waits on `descriptor()` and calls `deliver()` when
/// it is readable; the handler runs inside `deliver()`, once for the events that have come since.
class NotificationObserver {
 public:
  /// Throws std::system_error when the data directory cannot be watched.
  NotificationObserver(std::string name, std::function<void()> handler);

  int descriptor() const { return inotify_.get(); }
  void deliver();

 private:
  std::string name_;
  std::function<void()> handler_;
  FileDescriptor inotify_;
};

}  // namespace platform::system

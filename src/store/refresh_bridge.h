#pragma once

#include <functional>

#include "platform/system/notification_center.h"

namespace tavi {

/// Both ends of the signal by which a program that changed the notes asks the application to read
/// them again. This program only sends it; one that wants it makes a bridge.
class TaviCLIBridge {
 public:
  /// Sends the signal. Waits for nobody and cannot fail.
  static void requestAppRefresh();

  /// Calls `refreshHandler`, if there is one, from `deliver()` for signals that have come since.
  /// Destroying the bridge ends it. Throws std::system_error when there is nothing to listen on.
  explicit TaviCLIBridge(std::function<void()> refreshHandler);

  /// Readable when a signal has come: for poll(2).
  int descriptor() const { return observer_.descriptor(); }
  void deliver() { observer_.deliver(); }

 private:
  platform::system::NotificationObserver observer_;
};

}  // namespace tavi

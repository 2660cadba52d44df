#pragma once

#include <functional>

#include "platform/system/notification_center.h"

namespace tavi {

/// Sends and receives the signal with which a program that changed notes asks the application to
/// reload them. This program only sends it; a receiver creates a bridge.
class TaviCLIBridge {
 public:
  /// Sends the signal. Never waits, and ignores failures.
  static void requestAppRefresh();

  /// Listens until destroyed; `deliver()` calls `refreshHandler`, which may be empty, if signals
  /// have arrived. Throws std::system_error if it cannot listen.
  explicit TaviCLIBridge(std::function<void()> refreshHandler);

  /// Becomes readable when a signal arrives; for poll(2). The bridge owns it.
  int descriptor() const { return observer_.descriptor(); }
  void deliver() { observer_.deliver(); }

 private:
  platform::system::NotificationObserver observer_;
};

}  // namespace tavi

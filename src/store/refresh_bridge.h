#pragma once

namespace tavi {

struct TaviCLIBridge {
  /// Tells the running application that the database may have changed. Never waits, never fails.
  static void requestAppRefresh();
};

}  // namespace tavi

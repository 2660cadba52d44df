#include "store/refresh_bridge.h"

#include <utility>

namespace tavi {
namespace {

constexpr const char* notificationName = "net.kelvaro.tavi.cli.didRequestRefresh";

}  // namespace

void TaviCLIBridge::requestAppRefresh() {
  platform::system::postNotification(notificationName);
}

TaviCLIBridge::TaviCLIBridge(std::function<void()> refreshHandler)
    : observer_(
          notificationName, refreshHandler ? std::move(refreshHandler) : [] {}) {}

}  // namespace tavi

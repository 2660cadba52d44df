#include "store/refresh_bridge.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/throwaway_home.h"

namespace tavi {
namespace {

bool signalled(TaviCLIBridge& bridge, int milliseconds) {
  pollfd waiting{bridge.descriptor(), POLLIN, 0};
  if (poll(&waiting, 1, milliseconds) != 1) return false;
  bridge.deliver();
  return true;
}

TEST(RefreshBridge, CarriesTheSignalFromOneProcessToAnother) {
  const support::ThrowawayHome home;
  TaviCLIBridge::requestAppRefresh();  // does nothing without a listener and a folder
  std::filesystem::create_directories(home.data());
  int received = 0;
  TaviCLIBridge bridge([&] { ++received; });
  const pid_t child = fork();
  if (child == 0) {
    TaviCLIBridge::requestAppRefresh();
    _exit(0);
  }
  ASSERT_TRUE(signalled(bridge, 5000));
  EXPECT_EQ(received, 1);
  waitpid(child, nullptr, 0);
  while (signalled(bridge, 100)) {
  }
  received = 0;
  std::ofstream(home.data() / "another.name") << "";
  signalled(bridge, 200);
  EXPECT_EQ(received, 0) << "a bridge receives only its own name";

  TaviCLIBridge withoutHandler(nullptr);
  TaviCLIBridge::requestAppRefresh();
  EXPECT_TRUE(signalled(withoutHandler, 5000)) << "and one without a handler does nothing";
}

}  // namespace
}  // namespace tavi

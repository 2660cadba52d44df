#include "platform/system/shared_work.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace platform::system {
namespace {

TEST(SharedWork, DoesEachStepOnce) {
  for (const bool inBackground : {false, true}) {
    std::vector<int> done(1000);
    SharedWork work;
    work.finish();
    work = SharedWork(
        done.size(), [&](std::size_t i) { ++done[i]; }, inBackground);
    SharedWork moved = std::move(work);
    moved.finish();
    EXPECT_EQ(done, std::vector<int>(1000, 1)) << inBackground;
  }
}

TEST(SharedWork, ThrowsWhatAStepThrewInEitherThread) {
  for (const bool inBackground : {false, true}) {
    SharedWork work(
        100, [](std::size_t i) { i % 2 == 0 ? throw std::runtime_error("even") : void(); },
        inBackground);
    EXPECT_THROW(work.finish(), std::runtime_error) << inBackground;
  }
}

TEST(SharedWork, WaitsForTheOtherThreadWhenItIsGivenUp) {
  using std::chrono::milliseconds;
  std::atomic<int> begun = 0;
  std::atomic<int> ended = 0;
  const auto step = [&](std::size_t) {
    ++begun;
    std::this_thread::sleep_for(milliseconds(10));
    ++ended;
  };
  {
    const SharedWork work(3, step, true);
    for (int i = 0; begun == 0 && i < 1000; ++i) std::this_thread::sleep_for(milliseconds(1));
  }
  EXPECT_EQ(begun, 3);
  EXPECT_EQ(ended, 3);
}

}  // namespace
}  // namespace platform::system

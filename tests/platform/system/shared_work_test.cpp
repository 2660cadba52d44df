#include "platform/system/shared_work.h"

#include <gtest/gtest.h>

#include <stdexcept>
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
  std::vector<int> done(1000);
  {
    const SharedWork work(
        done.size(), [&](std::size_t i) { done[i] = 1; }, true);
  }
  for (std::size_t i = 1; i < done.size(); ++i) EXPECT_LE(done[i], done[i - 1]);
}

}  // namespace
}  // namespace platform::system

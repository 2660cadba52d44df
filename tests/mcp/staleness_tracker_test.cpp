#include "mcp/staleness_tracker.h"

#include <gtest/gtest.h>

namespace tavi::mcp {
namespace {

using namespace std::chrono_literals;

class StalenessTrackerTest : public ::testing::Test {
 protected:
  bool checkAt(std::chrono::milliseconds time) {
    return tracker.checkForStaleness(StalenessTracker::Clock::time_point(time));
  }

  BinaryFingerprint onDisk{.path = "/usr/bin/tavicli", .mtime = {}, .size = 100, .uuid = {1}};
  bool missing = false;
  int looks = 0;
  StalenessTracker::Provider provider = [this] {
    ++looks;
    if (missing) throw BinaryFingerprintError::statFailed("/usr/bin/tavicli", "gone");
    return onDisk;
  };
  StalenessTracker tracker{onDisk, provider};
};

TEST_F(StalenessTrackerTest, LooksAtTheDiskAtMostOnceInTwoSeconds) {
  checkAt(0ms), checkAt(1ms), checkAt(1999ms);
  EXPECT_EQ(looks, 1);
  checkAt(2000ms), checkAt(3999ms);
  EXPECT_EQ(looks, 2);
}

TEST_F(StalenessTrackerTest, ReportsAnotherBuildExactlyOnceAndLooksNoMore) {
  EXPECT_FALSE(checkAt(0s));
  onDisk.uuid = {2};
  onDisk.size = 101;
  EXPECT_FALSE(checkAt(1s)) << "between two looks";
  EXPECT_FALSE(tracker.staleFlag());
  EXPECT_TRUE(checkAt(2s));
  EXPECT_TRUE(tracker.staleFlag());
  onDisk.uuid = {1};
  EXPECT_FALSE(checkAt(9s));
  EXPECT_TRUE(tracker.staleFlag());
  EXPECT_EQ(looks, 2);
}

TEST_F(StalenessTrackerTest, TakesTheSameBuildWithANewTimeForTheSame) {
  onDisk.mtime += 1ns;
  EXPECT_FALSE(checkAt(0s));
}

TEST_F(StalenessTrackerTest, NeedsATimeOrASizeThatDiffersToCompareBuilds) {
  onDisk.uuid = {2};
  EXPECT_FALSE(checkAt(0s));
  onDisk.mtime += 1ns;
  EXPECT_TRUE(checkAt(2s));
}

TEST_F(StalenessTrackerTest, TakesAMissingFileForAnotherBuild) {
  missing = true;
  EXPECT_TRUE(checkAt(0s));
}

}  // namespace
}  // namespace tavi::mcp

#include "platform/system/notification_center.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include <system_error>

#include "system_testing.h"

namespace platform::system {
namespace {

class NotificationCenter : public testing::Test {
 protected:
  NotificationCenter() : data_("XDG_DATA_HOME", home_.path().string()) {}

  static bool isReadable(const NotificationObserver& observer) {
    pollfd descriptor{observer.descriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
  }

  std::filesystem::path directory() const { return home_.path() / "tavi"; }

  ScopedDirectory home_;
  ScopedVariable data_;
};

TEST_F(NotificationCenter, TellsEachPostOnceAndOnlyItsOwn) {
  std::filesystem::create_directory(directory());
  int count = 0;
  NotificationObserver observer("event", [&] { ++count; });
  EXPECT_FALSE(isReadable(observer));
  for (int post = 1; post <= 3; ++post) {  // the first one creates the file
    postNotification("event");
    EXPECT_TRUE(isReadable(observer));
    observer.deliver();
    EXPECT_EQ(count, post);
    EXPECT_FALSE(isReadable(observer));
  }
  postNotification("event");
  postNotification("event");
  observer.deliver();
  EXPECT_EQ(count, 4);  // one call for all events since the last
  postNotification("events");
  writeFile(directory() / "tavi.sqlite", "x");
  observer.deliver();
  observer.deliver();
  EXPECT_EQ(count, 4);
}

TEST_F(NotificationCenter, MovesTheModificationTimeOfAPrivateEmptyFile) {
  std::filesystem::create_directory(directory());
  const auto file = directory() / "event";
  postNotification("event");
  struct stat status {};
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  EXPECT_EQ(status.st_size, 0);
  const timespec longAgo[] = {{1000, 0}, {1000, 0}};
  utimensat(AT_FDCWD, file.c_str(), longAgo, 0);
  postNotification("event");
  ASSERT_EQ(stat(file.c_str(), &status), 0);
  EXPECT_GT(status.st_mtim.tv_sec, 1'000'000);
}

TEST_F(NotificationCenter, DoesNothingWithoutADataDirectory) {
  postNotification("event");
  EXPECT_FALSE(std::filesystem::exists(directory()));
  EXPECT_THROW(NotificationObserver("event", [] {}), std::system_error);
}

}  // namespace
}  // namespace platform::system

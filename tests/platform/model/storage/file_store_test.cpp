#include "platform/model/storage/file_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>

#include "platform/model/storage/open_database.h"
#include "platform/model/storage/sqlite.h"
#include "support/throwaway_home.h"

namespace {
std::function<void()> beforeMode;  // called once, before the mode of a file is set
}

extern "C" int fchmod(int file, mode_t mode) noexcept {
  if (beforeMode) std::exchange(beforeMode, nullptr)();
  return static_cast<int>(syscall(SYS_fchmod, file, mode));
}

namespace tavimodel {
namespace {

namespace fs = std::filesystem;

class Stage : public testing::Test {
 protected:
  fs::path source(const std::string& name) {
    const fs::path path = home.temporary() / name;
    std::ofstream(path) << "bytes";
    return path;
  }
  /// A file that is copied and not moved, since it has a second hard link.
  fs::path shared(const std::string& name) {
    fs::create_hard_link(source(name), home.temporary() / ("again " + name));
    return home.temporary() / name;
  }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  fs::path folder = home.data() / "files";
};

TEST_F(Stage, KeepsPrivateFilesOfItsOwnWhateverTheSourceIs) {
  const auto mode = [](const fs::path& path) {
    return static_cast<unsigned>(fs::status(path).permissions());
  };
  const fs::path moved = source("moved"), copied = shared("copied"), target = source("target");
  const fs::path link = home.temporary() / "link";
  fs::create_symlink(target, link);
  for (const fs::path& path : {moved, copied, target}) fs::permissions(path, fs::perms{0644});
  const auto connection = openDatabase(home.data(), DatabaseAccess::readWrite);
  {
    FileStore store(folder);
    for (const fs::path& path : {moved, copied, link}) {
      const mode_t before = umask(0777);
      const FileStore::Staged staged = store.stage(path);
      umask(before);
      const fs::path stored = store.locate(staged.storedName).value();
      EXPECT_EQ(mode(stored), 0600U) << path;
      std::ifstream bytes(stored);
      EXPECT_EQ(std::string(std::istreambuf_iterator<char>(bytes), {}), "bytes") << path;
    }
  }
  EXPECT_TRUE(fs::is_symlink(link));
  EXPECT_EQ(mode(target), 0644U) << "somebody else's";
  EXPECT_TRUE(fs::is_empty(folder / "staged")) << "what is not published goes";
}

// A sweep removes unlocked files, even between a file's creation and its lock.
TEST_F(Stage, LosesNothingToProgramsThatSweepAtTheSameTime) {
  const auto connection = openDatabase(home.data(), DatabaseAccess::readWrite);
  const auto sweep = [&] { FileStore(folder).sweep(*connection, false); };
  for (const fs::path& path : {source("moved"), shared("copied")}) {
    FileStore store(folder);
    beforeMode = sweep;
    const FileStore::Staged staged = store.stage(path);
    sweep();
    EXPECT_TRUE(store.locate(staged.storedName)) << path;
  }
}

}  // namespace
}  // namespace tavimodel

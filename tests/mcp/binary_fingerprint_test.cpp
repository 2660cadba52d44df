#include "mcp/binary_fingerprint.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "image_builder.h"

namespace tavi::mcp {
namespace {

namespace fs = std::filesystem;
using namespace testing;

class BinaryFingerprintTest : public ::testing::Test {
 protected:
  BinaryFingerprintTest() { fs::create_directories(folder); }
  ~BinaryFingerprintTest() override { fs::remove_all(folder); }

  std::string write(const std::string& name, std::string_view bytes) {
    std::ofstream(folder / name, std::ios::binary) << bytes;
    return folder / name;
  }
  /// The error's message, with "~" for the folder's path.
  std::string refusal(const std::string& path) {
    try {
      BinaryFingerprint::ofFile(path);
      return "none";
    } catch (const BinaryFingerprintError& error) {
      std::string text = error.what();
      if (const auto at = text.find(folder); at != std::string::npos)
        text.replace(at, folder.string().size(), "~");
      return text;
    }
  }

  fs::path folder = fs::path(::testing::TempDir()) / ("fingerprint." + std::to_string(::getpid()));
};

TEST_F(BinaryFingerprintTest, TellsTimeSizeAndBuild) {
  const std::string path = write("a", elfFile(kUUIDText));
  const timespec times[] = {{0, UTIME_OMIT}, {1'700'000'000, 5}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  const BinaryFingerprint found = BinaryFingerprint::ofFile(path);
  EXPECT_EQ(found.path, path);
  EXPECT_EQ(found.mtime.time_since_epoch().count(), 1'700'000'000'000'000'005);
  EXPECT_EQ(found.size, 152);
  EXPECT_EQ(std::string(found.uuid.begin(), found.uuid.end()), kUUIDText);
}

TEST_F(BinaryFingerprintTest, SaysWhatIsWrongWithAFile) {
  EXPECT_EQ(refusal(folder / "none"), "Could not stat ~/none: No such file or directory");
  EXPECT_EQ(refusal(folder), "Could not read ~: Is a directory");
  EXPECT_EQ(refusal(write("script", "#!/bin/sh\n")),
            "Could not find LC_UUID in ~/script (not a Mach-O, or no UUID load command)");
  EXPECT_EQ(refusal(write("empty", "")),
            "Could not find LC_UUID in ~/empty (not a Mach-O, or no UUID load command)");
  const std::string pipe = folder / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_NE(refusal(pipe), "none");
}

TEST_F(BinaryFingerprintTest, KnowsTheRunningProgramAndItsCopy) {
  const BinaryFingerprint self = BinaryFingerprint::current();
  EXPECT_EQ(self.path, fs::read_symlink("/proc/self/exe"));
  fs::copy_file(self.path, folder / "copy");
  EXPECT_EQ(BinaryFingerprint::ofFile(folder / "copy").uuid, self.uuid);
  EXPECT_NE(BinaryFingerprint::ofFile("/bin/sh").uuid, self.uuid);
}

}  // namespace
}  // namespace tavi::mcp

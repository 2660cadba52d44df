#include "platform/system/file_types.h"

#include <gtest/gtest.h>

namespace platform::system {
namespace {

TEST(FileTypes, AnExtensionIsWhatStandsBehindTheLastDot) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"a.png", "png"}, {"a.tar.gz", "gz"}, {"a", ""},  {"", ""},
      {".bashrc", ""},  {".a.txt", "txt"},  {"a.", ""}, {"a. b", " b"}};
  for (const auto& [name, extension] : cases) EXPECT_EQ(pathExtension(name), extension) << name;
}

TEST(FileTypes, FollowTheExtension) {
  for (const char* name :
       {"a.png", "a.JPG", "a.jpeg", "a.jpe", "a.gif", "a.webp", "a.heic", "a.HEIF", "a.tif",
        "a.tiff", "a.bmp", "a.ico", "a.avif", "a.jp2", "a.psd", "a.dng", "a.3fr", "a.xpm"}) {
    const FileType type = fileTypeOf(name);
    EXPECT_TRUE(type.conformsToImage) << name;
    EXPECT_FALSE(type.conformsToSVG || type.conformsToPDF) << name;
  }
  EXPECT_TRUE(fileTypeOf("a.Svg").conformsToSVG);
  EXPECT_TRUE(fileTypeOf("a.svg").conformsToImage);
  EXPECT_TRUE(fileTypeOf("a.PDF").conformsToPDF);
  EXPECT_FALSE(fileTypeOf("a.pdf").conformsToImage);
  for (const char* name : {"png", ".png", "a.pngx", "a.txt", "a.", "a.png ", "a.extremelylong"}) {
    const FileType type = fileTypeOf(name);
    EXPECT_FALSE(type.conformsToImage || type.conformsToSVG || type.conformsToPDF) << name;
  }
}

}  // namespace
}  // namespace platform::system

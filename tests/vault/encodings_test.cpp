#include "vault/encodings.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace tavi::vault {
namespace {

TEST(Encodings, ConvertWhatIsTextAndNothingElse) {
  EXPECT_EQ(toUTF8("caf\xE9 \x80", "windows-1252"), "café €");
  EXPECT_EQ(toUTF8("\xFF\xFE"
                   "a\0\xAC\x20"s,
                   "UTF-16"),
            "a€");
  EXPECT_EQ(toUTF8("", "latin1"), "");
  EXPECT_EQ(toUTF8("caf\xE9", "UTF-8"), std::nullopt);
  EXPECT_EQ(toUTF8("caf\xE9", "no such encoding"), std::nullopt);
  EXPECT_TRUE(isEncoding("Shift_JIS"));
  EXPECT_FALSE(isEncoding("no such encoding"));
}

TEST(Encodings, AreGuessedByNamesThatConvert) {
  const std::string latin =
      "Die B\xFC"
      "cher geh\xF6ren den Kindern, und der Kaffee ist kalt. ";
  const auto likely = likelyEncoding(latin + latin);
  ASSERT_TRUE(likely);
  EXPECT_EQ(toUTF8(latin, *likely), "Die Bücher gehören den Kindern, und der Kaffee ist kalt. ");
  EXPECT_EQ(likelyEncoding("\xFF\xFE"
                           "a\0b\0"s),
            "UTF-16LE");
  EXPECT_EQ(likelyEncoding("\x89PNG\r\n\x1A\n\0\0\0\rIHDR"s), std::nullopt);
}

}  // namespace
}  // namespace tavi::vault

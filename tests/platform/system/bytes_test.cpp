#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/system/base64.h"
#include "platform/system/hashing.h"

namespace platform::system {
namespace {

using namespace std::literals;

std::string hexOfDigest(std::string_view bytes) {
  const SHA256Digest digest = sha256(bytes);
  return hexadecimal({reinterpret_cast<const char*>(digest.data()), digest.size()});
}

TEST(Hashing, IsSHA256) {  // the examples of FIPS 180-4
  EXPECT_EQ(hexOfDigest(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hexOfDigest("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(hexOfDigest(std::string(1'000'000, 'a')),
            "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
  std::vector<std::string_view> pieces{"", "c", "ab"};
  EXPECT_EQ(sha256([&] {
              const std::string_view next = pieces.back();
              pieces.pop_back();
              return next;
            }),
            sha256("abc"));
}

TEST(Hashing, MakesUpperCaseRandomUUIDs) {
  const std::string one = newUUID();
  EXPECT_THAT(one, testing::MatchesRegex(
                       "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
  EXPECT_NE(one, newUUID());
}

TEST(Base64, EncodesAndDecodes) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", ""},        {"f", "Zg=="},        {"fo", "Zm8="},
      {"foo", "Zm9v"}, {"foob", "Zm9vYg=="}, {"\0\xFF\xFE"sv, "AP/+"}};
  for (const auto& [bytes, text] : cases) {
    EXPECT_EQ(base64Encoded(bytes), text);
    EXPECT_EQ(base64Decoded(text), bytes);
  }
  std::string all;
  for (int i = 0; i < 100'000; ++i) all.push_back(static_cast<char>(i * 7));
  EXPECT_EQ(base64Decoded(base64Encoded(all)), all);
}

TEST(Base64, RefusesWhatIsNotStandardAndPadded) {
  for (const std::string_view text : {"Zg", "Zg=", "Zg===", "Zm9v\n", "Zm 9v", "Zm-_", "Zh==", "=",
                                      "====", "Zg==Zg==", "Zm9vZg=a", "\xC3\xA9==", "A==="}) {
    EXPECT_EQ(base64Decoded(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace platform::system

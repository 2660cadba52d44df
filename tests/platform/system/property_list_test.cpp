#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "platform/system/preferences.h"
#include "system_testing.h"

namespace platform::system {
namespace {

using namespace std::literals;

constexpr std::string_view kXML = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Example//DTD PLIST 1.0//EN" "http://example.com/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
  <key>yes</key> <true/>
  <key>no</key> <false></false>
  <key>n</key> <integer>-5</integer>
  <key>big</key> <integer> 1099511627776 </integer>
  <key>small</key> <integer>+7</integer>
  <key>pi</key> <real>3.25</real>
  <key>text</key> <string>bottom</string>
  <key>&#xFC;n&#239;</key> <string><![CDATA[grün]]> 😀</string>
  <key>data</key> <data>YWJj</data>
  <key>when</key> <date>2024-01-01T00:00:00Z</date>
  <key>list</key>
  <array><integer>1</integer><dict><key>text</key><string>inner</string></dict></array>
  <key>dict</key> <dict><key>x</key><integer>1</integer></dict>
  <key>long</key> <string>xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx</string>
</dict>
</plist>
)";

/// The same dictionary, as another program wrote it.
constexpr std::string_view kBinary =
    "bplist00\xDD\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0A\x0B\x0C\x0D\x0E\x0F\x10\x13\x18\x19"
    "\x1A\x1B\x1C\x1D\x1E\x1F SbigTdataTdictTlistTlongQnRnoRpiUsmallTtextTwhenSyesc\x00\xFC\x00n"
    "\x00\xEF\x13\x00\x00\x01\x00\x00\x00\x00\x00"
    "Cabc\xD1\x11\x12Qx\x10\x01\xA3\x12\x14\x15"
    "\x10\x02\xD1\x16\x17QaQb_\x10(xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\x13\xFF\xFF\xFF\xFF"
    "\xFF\xFF\xFF\xFB\x08#@\x0A\x00\x00\x00\x00\x00\x00\x10\x07Vbottom3A\xC5\xA1\x1C\x00\x00\x00"
    "\x00\x09g\x00g\x00r\x00\xFC\x00n\x00 \xD8=\xDE\x00\x08#',16;=@CINSW^gknprvx{}\x7F\xAA\xB3"
    "\xB4\xBD\xBF\xC6\xCF\xD0\x00\x00\x00\x00\x00\x00\x01\x01\x00\x00\x00\x00\x00\x00\x00!\x00"
    "\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\xDF"sv;

std::string xmlList(const std::string& entries) {
  return "<plist><dict>" + entries + "</dict></plist>";
}

std::string repeated(std::string_view part, std::size_t count) {
  std::string result;
  for (std::size_t i = 0; i < count; ++i) result += part;
  return result;
}

TEST(PropertyList, BothFormsGiveTheTopValues) {
  const PropertyDictionary expected = {
      {"yes", true},
      {"no", false},
      {"n", std::int64_t{-5}},
      {"big", std::int64_t{1} << 40},
      {"small", std::int64_t{7}},
      {"pi", 3.25},
      {"text", "bottom"s},
      {"\u00FCn\u00EF", "gr\u00FCn \U0001F600"s},
      {"data", std::monostate()},
      {"when", std::monostate()},
      {"list", std::monostate()},
      {"dict", std::monostate()},
      {"long", std::string(40, 'x')},
  };
  EXPECT_EQ(parsePropertyList(kXML), expected);
  EXPECT_EQ(parsePropertyList(kBinary), expected);
}

TEST(PropertyList, AMalformedOneIsNone) {
  const std::string cases[] = {
      "",
      "bplist00",
      "text",
      "<plist></plist>",
      "<plist><array/></plist>",
      "<plist><string>x</string></plist>",
      "<dict/>",
      "<plist><dict/><dict/></plist>",
      "<plist><dict>",
      xmlList("<key>a</key>"),
      xmlList("<string>a</string>"),
      xmlList("<key>a</key><key>b</key>"),
      xmlList("<key>a</key><true/><true/>"),
      xmlList("stray"),
      xmlList("<key>a</key><string>\xFF</string>"),
      "<!DOCTYPE plist [<!ENTITY e \"x\">]>" + xmlList("<key>a</key><string>&e;</string>"),
      "<!DOCTYPE plist [<!ENTITY e SYSTEM \"/etc/hostname\">]>" + xmlList(""),
      std::string(kBinary.substr(0, kBinary.size() - 1)),
      std::string(17 << 20, ' ') + std::string(kXML),
  };
  for (const std::string& bytes : cases) {
    EXPECT_EQ(parsePropertyList(bytes), std::nullopt) << bytes.substr(0, 80);
  }
  EXPECT_EQ(parsePropertyList(xmlList("")), PropertyDictionary());
  EXPECT_EQ(parsePropertyList(xmlList("<key>a</key><integer>99999999999999999999</integer>")),
            (PropertyDictionary{{"a", std::monostate()}}));
}

TEST(PropertyList, SurvivesDeepNestingAndMultiplyingEntities) {
  constexpr std::size_t kDepth = 200'000;
  EXPECT_EQ(parsePropertyList(xmlList("<key>a</key>" + repeated("<array>", kDepth) +
                                      repeated("</array>", kDepth))),
            std::nullopt);
  EXPECT_NE(parsePropertyList(
                xmlList("<key>a</key>" + repeated("<array>", 5000) + repeated("</array>", 5000))),
            std::nullopt);
  std::string bomb = "<!DOCTYPE plist [<!ENTITY a0 \"x\">";
  for (int i = 1; i < 40; ++i) {
    const std::string previous = "&a" + std::to_string(i - 1) + ";";
    bomb += "<!ENTITY a" + std::to_string(i) + " \"" + previous + previous + "\">";
  }
  EXPECT_EQ(parsePropertyList(bomb + "]>" + xmlList("<key>a</key><string>&a39;</string>")),
            std::nullopt);
}

std::string bigEndian(std::uint64_t value, int size) {
  std::string bytes;
  while (size-- > 0) bytes.push_back(static_cast<char>(value >> 8 * size));
  return bytes;
}

/// A dictionary with distinct keys, whose values all refer to the same long text.
std::string binaryWithSharedText(std::size_t pairs, std::size_t textSize) {
  std::string bytes = "bplist00";
  std::string offsets;
  const auto add = [&](const std::string& object) {
    offsets += bigEndian(bytes.size(), 4);
    bytes += object;
  };
  std::string references;
  for (std::size_t i = 1; i <= pairs; ++i) references += bigEndian(i, 4);
  for (std::size_t i = 1; i <= pairs; ++i) references += bigEndian(pairs + 1, 4);
  add("\xDF\x12" + bigEndian(pairs, 4) + references);
  for (std::size_t i = 1; i <= pairs; ++i) add("\x54" + bigEndian(0x61616161 + i, 4));
  add("\x5F\x12" + bigEndian(textSize, 4) + std::string(textSize, 'x'));
  const std::size_t table = bytes.size();
  return bytes + offsets + std::string(6, '\0') + "\x04\x04" + bigEndian(pairs + 2, 8) +
         bigEndian(0, 8) + bigEndian(table, 8);
}

TEST(PropertyList, RefusesATextRepeatedWithoutMeasure) {
  EXPECT_EQ(parsePropertyList(binaryWithSharedText(3, 10))->size(), 3u);
  EXPECT_EQ(parsePropertyList(binaryWithSharedText(100'000, 1'000'000)), std::nullopt);
}

TEST(PropertyList, ReadsBinaryTextsOfEveryWidthAndBrokenOnes) {
  const auto withValue = [](const std::string& object) {
    const std::string bytes =
        "bplist00\xD1\x01\x02\x51"
        "a" +
        object;
    return bytes + "\x08\x0B\x0D" + std::string(6, '\0') + "\x01\x01" + bigEndian(3, 8) +
           bigEndian(0, 8) + bigEndian(bytes.size(), 8);
  };
  const std::pair<std::string, PropertyValue> cases[] = {
      {"\x62\xD8\x3D\xDE\x00"s, "\U0001F600"s},
      {"\x62\xDE\x00\x00\x61"s, "\uFFFDa"s},
      {"\x61\xD8\x3D"s, "\uFFFD"s},
      {"\x52\xC3\xA9"s, "\u00E9"s},
      {"\x51\xFF"s, "\uFFFD"s},
      {"\x22\x3F\xC0\x00\x00"s, 1.5},
      {"\x11\xFF\xFE"s, std::int64_t{0xFFFE}},
      {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"s, std::int64_t{-2}},
      {"\x14"s + std::string(7, '\0') + "\1" + std::string(8, '\0'), std::monostate()},
      {"\x00"s, std::monostate()},
      {"\x80\x01"s, std::monostate()},
  };
  for (const auto& [object, value] : cases) {
    EXPECT_EQ(parsePropertyList(withValue(object)), (PropertyDictionary{{"a", value}}))
        << object.size();
  }
  // A count that exceeds the file, and one whose size in bytes overflows.
  EXPECT_EQ(parsePropertyList(withValue("\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF")), std::nullopt);
  EXPECT_EQ(parsePropertyList(withValue("\x6F\x13\x80\x00\x00\x00\x00\x00\x00\x00"s)),
            std::nullopt);
}

TEST(PropertyList, ReadsRegularFilesOnly) {
  const ScopedDirectory folder;
  writeFile(folder.path() / "a.plist", kXML);
  EXPECT_EQ(readPropertyList(folder.path() / "a.plist")->size(), 13u);
  EXPECT_EQ(readPropertyList(folder.path() / "missing"), std::nullopt);
  EXPECT_EQ(readPropertyList(folder.path()), std::nullopt);
  ASSERT_EQ(mkfifo((folder.path() / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(readPropertyList(folder.path() / "pipe"), std::nullopt);
}

TEST(UserDefaults, ReadsTruthFromEveryKindOfValue) {
  const ScopedDirectory home;
  const ScopedVariable variable("HOME", home.path().string());
  writeFile(home.path() / "Library/Preferences/suite.plist",
            xmlList("<key>t</key><true/><key>f</key><false/><key>one</key><integer>1</integer>"
                    "<key>zero</key><integer>0</integer><key>half</key><real>0.5</real>"
                    "<key>YES</key><string>YES</string><key>True</key><string>True</string>"
                    "<key>text1</key><string>1</string><key>no</key><string>no</string>"
                    "<key>list</key><array/>"));
  const UserDefaults defaults("suite");
  for (const char* key : {"t", "one", "half", "YES", "True", "text1"}) {
    EXPECT_TRUE(defaults.boolForKey(key)) << key;
  }
  for (const char* key : {"f", "zero", "no", "list", "missing"}) {
    EXPECT_FALSE(defaults.boolForKey(key)) << key;
  }
  EXPECT_FALSE(UserDefaults("other").boolForKey("t"));
}

}  // namespace
}  // namespace platform::system

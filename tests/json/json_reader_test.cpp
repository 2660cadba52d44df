#include "json/json_reader.h"

#include <gtest/gtest.h>

#include <boost/json/value.hpp>
#include <string>

namespace tavi {
namespace {

TEST(ParseJSON, ReadsOneValueAndKeepsIntegersApart) {
  const auto value = parseJSON(" {\"a\":7,\"b\":7.0,\"a\":\"last\"}\t");
  EXPECT_TRUE(value.at("b").is_double());
  EXPECT_EQ(value.at("a").as_string(), "last");
  EXPECT_TRUE(parseJSON("-9223372036854775808").is_int64());
}

TEST(ParseJSON, ReadsALoneSurrogateAsTheReplacementCharacter) {
  const std::string replaced = "\xEF\xBF\xBD", smile = "\xF0\x9F\x98\x80";
  const std::pair<const char*, std::string> table[] = {
      {R"(\ud83d)", replaced},
      {R"(\uDE00x)", replaced + "x"},
      {R"(\ud83d\ud83d\ude00\ude00)", replaced + smile + replaced},
      {R"(\ud83dude00)", replaced + "ude00"},
      {R"(\ud83d\n\udfff)", replaced + "\n" + replaced},
      {R"(\\ud83d\\\ud83d)", "\\ud83d\\" + replaced},
      {R"(\ud83d\u0041)", replaced + "A"},
  };
  for (const auto& [written, text] : table)
    EXPECT_EQ(parseJSON('"' + std::string(written) + '"').as_string(), text) << written;
}

TEST(ParseJSON, RefusesWhatIsNotJSON) {
  const std::string deep(200'000, '[');
  for (const std::string& text :
       {std::string(), std::string("{"), std::string("{} x"), std::string("[1,]"),
        std::string("\"\xff\""), std::string("\"\\ud83\""), std::string("\"\\ud83d"), deep}) {
    EXPECT_THROW(parseJSON(text), JSONParseError) << text.substr(0, 10);
  }
}

}  // namespace
}  // namespace tavi

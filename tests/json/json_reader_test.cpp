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

TEST(ParseJSON, RefusesWhatIsNotJSON) {
  const std::string deep(200'000, '[');
  for (const std::string& text :
       {std::string(), std::string("{"), std::string("{} x"), std::string("[1,]"),
        std::string("\"\xff\""), std::string("\"\\ud83d\""), deep}) {
    EXPECT_THROW(parseJSON(text), JSONParseError) << text.substr(0, 10);
  }
}

}  // namespace
}  // namespace tavi

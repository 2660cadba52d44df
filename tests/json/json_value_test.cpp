#include "json/json_value.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(JSONValue, KeepsEachKindApart) {
  using Kind = JSONValue::Kind;
  EXPECT_EQ(JSONValue("text").kind(), Kind::string);  // not a boolean made from the pointer
  EXPECT_EQ(JSONValue(7).integer(), 7);
  EXPECT_EQ(JSONValue(7.0).kind(), Kind::number);
  EXPECT_EQ(JSONValue(false).kind(), Kind::boolean);
  EXPECT_EQ(JSONValue(JSONValue::Array{}).kind(), Kind::array);
  EXPECT_EQ(JSONValue(JSONValue::Object{}).kind(), Kind::object);
  EXPECT_EQ(JSONValue().kind(), Kind::null);
  EXPECT_NE(JSONValue(1), JSONValue(1.0));
}

TEST(JSONValue, FindsTheLastMemberOfAName) {
  const JSONValue value(JSONValue::Object{{"a", 1}, {"b", 2}, {"a", 3}});
  EXPECT_EQ(*value.find("a"), JSONValue(3));
  EXPECT_EQ(value.find("c"), nullptr);
  EXPECT_EQ(value, JSONValue(value.object()));
}

}  // namespace
}  // namespace tavi

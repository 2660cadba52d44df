#include "json/json_value.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(JSONValue, FindsTheLastMemberOfAName) {
  const JSONValue value(JSONValue::Object{{"a", 1}, {"b", 2}, {"a", 3}});
  EXPECT_EQ(*value.find("a"), JSONValue(3));
  EXPECT_EQ(value.find("c"), nullptr);
  EXPECT_EQ(value, JSONValue(value.object()));
}

}  // namespace
}  // namespace tavi

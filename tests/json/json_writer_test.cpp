#include "json/json_writer.h"

#include <gtest/gtest.h>

#include <boost/json/value.hpp>
#include <functional>
#include <limits>
#include <random>
#include <vector>

#include "json/json_reader.h"

namespace tavi {
namespace {

using Write = std::function<void(JSONWriter&)>;

std::string written(JSONStyle style, const Write& write) {
  StringSink sink;
  JSONWriter writer(sink, style);
  write(writer);
  return sink.take();
}

std::string stringOf(JSONStyle style, std::string_view text) {
  return written(style, [&](JSONWriter& writer) { writer.string(text); });
}

TEST(JSONWriter, EscapesWhatMustBeEscapedAndNothingElse) {
  struct Case {
    std::string_view text, commandLine, wire;
  };
  using namespace std::string_view_literals;
  for (const auto& [text, commandLine, wire] : {
           Case{"", R"("")", R"("")"},
           Case{"plain text of more than eight bytes", R"("plain text of more than eight bytes")",
                R"("plain text of more than eight bytes")"},
           Case{"a\\b\"c", R"("a\\b\"c")", R"("a\\b\"c")"},
           Case{"\n\r\t", R"("\n\r\t")", R"("\n\r\t")"},
           Case{"\b\f\x1f\0"sv, R"("\u0008\u000c\u001f\u0000")", R"("\u0008\u000c\u001f\u0000")"},
           Case{"work/draft", R"("work/draft")", R"("work\/draft")"},
           Case{"\x7f é 日本 🪐", "\"\x7f é 日本 🪐\"", "\"\x7f é 日本 🪐\""},
           Case{"cut \xe6\x97, lone \xff", "\"cut \uFFFD, lone \uFFFD\"",
                "\"cut \uFFFD, lone \uFFFD\""},
       }) {
    EXPECT_EQ(stringOf(JSONStyle::commandLine, text), commandLine);
    EXPECT_EQ(stringOf(JSONStyle::wire, text), wire);
  }
  EXPECT_EQ(escapeJSON("say \"hi\"/\x01"), R"(say \"hi\"/\u0001)");
}

// Escapes at every position in the eight bytes that are scanned at once, and texts longer than the
// sink's buffer.
TEST(JSONWriter, IsReadBackAsItWas) {
  std::mt19937 random(7);
  const std::string alphabet = "aaaaaaaaaaaaaaaaaa/\\\"\n\x01\x1f ~\x7f";
  for (std::size_t length : {1U, 7U, 8U, 9U, 16U, 63U, 300U, 70'000U, 200'000U}) {
    for (int repetition = 0; repetition < 5; ++repetition) {
      std::string text(length, 'a');
      for (char& byte : text) byte = alphabet[random() % alphabet.size()];
      for (JSONStyle style : {JSONStyle::commandLine, JSONStyle::wire}) {
        EXPECT_TRUE(parseJSON(stringOf(style, text)).as_string() == text) << length;
      }
    }
  }
}

TEST(JSONWriter, SeparatesByCommasWhereverOneIsDue) {
  EXPECT_EQ(written(JSONStyle::wire,
                    [](JSONWriter& writer) {
                      writer.beginObject();
                      writer.key("a");
                      writer.beginArray();
                      writer.beginArray();
                      writer.endArray();
                      writer.beginObject();
                      writer.endObject();
                      writer.string("x");
                      writer.integer(std::numeric_limits<std::int64_t>::min());
                      writer.endArray();
                      writer.key("b");
                      writer.boolean(true);
                      writer.key("c");
                      writer.raw("{}");
                      writer.key("d");
                      writer.null();
                      writer.endObject();
                    }),
            R"({"a":[[],{},"x",-9223372036854775808],"b":true,"c":{},"d":null})");
}

TEST(JSONWriter, WritesNumbersInTheirShortestForm) {
  const auto numbers = [](JSONWriter& writer) {
    writer.beginArray();
    for (double number : {1.5, 0.1, -2.0, 1e300, std::numeric_limits<double>::infinity()})
      writer.number(number);
    writer.endArray();
  };
  EXPECT_EQ(written(JSONStyle::wire, numbers), "[1.5,0.1,-2,1e+300,null]");
}

TEST(JSONWriter, SortsTheMembersOfAValueOnTheWireAlone) {
  const JSONValue value(JSONValue::Object{
      {"b", 1}, {"a", JSONValue::Object{{"z", true}, {"y", JSONValue()}}}, {"b", "last"}});
  const auto write = [&](JSONWriter& writer) { writer.value(value); };
  EXPECT_EQ(written(JSONStyle::wire, write), R"({"a":{"y":null,"z":true},"b":"last"})");
  EXPECT_EQ(written(JSONStyle::commandLine, write),
            R"({"b":1,"a":{"z":true,"y":null},"b":"last"})");
}

}  // namespace
}  // namespace tavi

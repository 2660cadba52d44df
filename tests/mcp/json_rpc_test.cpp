#include "mcp/json_rpc.h"

#include <gtest/gtest.h>
#include <boost/json/serialize.hpp>

#include "json/json_reader.h"

namespace tavi::mcp {
namespace {

/// The result of parsing a line: "nothing", the error, or the parts of the request.
std::string reading(std::string_view line) {
  try {
    const auto request = parseRequest(line);
    if (!request) return "nothing";
    StringSink sink;
    if (request->id) encodeResult(sink, *request->id, [](JSONWriter& w) { w.null(); });
    return request->method + " " + sink.take() +
           (request->params ? " " + serialize(*request->params) : "");
  } catch (const JSONRPCError& error) {
    return std::to_string(static_cast<int>(error.code())) + " " + error.what();
  } catch (const JSONParseError& error) {
    return std::string("parser: ") + error.what();
  }
}

bool failsInParser(std::string_view line) {
  return reading(line).starts_with("parser: ");
}

TEST(ParseRequest, PassesOverBlankLines) {
  for (const char* line : {"", "  \t ", "\xc2\xa0\xe2\x80\xa8\xe3\x80\x80", "\v\f\r"})
    EXPECT_EQ(reading(line), "nothing") << line;
}

TEST(ParseRequest, RefusesWhatIsNoRequest) {
  const std::pair<const char*, const char*> table[] = {
      {"[]", "-32700 invalid JSON"},
      {R"([{"jsonrpc":"2.0","id":1,"method":"ping"}])", "-32700 invalid JSON"},
      {"{}", "-32600 missing method"},
      {R"({"id":1})", "-32600 missing method"},
      {R"({"method":5})", "-32600 missing method"},
      {R"({"method":null,"id":1})", "-32600 missing method"},
  };
  for (const auto& [line, expected] : table) EXPECT_EQ(reading(line), expected) << line;
}

TEST(ParseRequest, LeavesOtherTextsToTheParser) {
  for (const char* line : {"\"ping\"", "12", "null", "{", "{\"method\":\"ping\"", "ping", "{]",
                           "{\"method\":\"ping\"} x", "{'method':1}", "{\"method\":\"ping\",}",
                           "{\"method\":\"a\tb\"}"})
    EXPECT_TRUE(failsInParser(line)) << line << ": " << reading(line);
}

TEST(ParseRequest, RefusesEndlessNestingAndTakesWhatPeopleNest) {
  const auto nested = [](std::size_t depth) {
    return R"({"method":"m","params":{"a":)" + std::string(depth, '[') + std::string(depth, ']') +
           "}}";
  };
  EXPECT_FALSE(failsInParser(nested(100)));
  EXPECT_TRUE(failsInParser(nested(200'000)));
  EXPECT_TRUE(failsInParser(std::string(200'000, '[')));
}

TEST(ParseRequest, FindsTheIDOfALineThatIsNestedTooDeep) {
  const std::string deep = std::string(200'000, '[') + std::string(200'000, ']');
  const auto idOf = [&](std::string line) -> std::string {
    line.replace(line.find('$'), 1, deep);
    try {
      parseRequest(line);
      return "no fault";
    } catch (const LineNestedTooDeep& fault) {
      StringSink sink;
      encodeError(sink, fault.id(), JSONRPC::ErrorCode::parseError, "");
      const std::string error = sink.take();
      return fault.id() ? error.substr(error.find("\"id\"")) : "none";
    }
  };
  for (const char* line :
       {R"({"id":7,"method":"m","params":{"a":$}})", R"({"params":{"a":$,"id":1},"id" : 7 })",
        R"({"id":1,"a":{"b\"}":"\\","c":[$]},"id":7.5})", R"({"a":$,"id":7,})"})
    EXPECT_EQ(idOf(line), R"("id":7,"jsonrpc":"2.0"})") << line;
  EXPECT_EQ(idOf(R"({"id":"x\u0041","a":$})"), R"("id":"xA","jsonrpc":"2.0"})");
  EXPECT_EQ(idOf(R"({"id":$,"method":"m"})"), R"("id":null,"jsonrpc":"2.0"})");
  for (const char* line : {R"({"a":$})", R"({"a":$ "id":7})", R"([$])", R"({"a":$,"id":x})"})
    EXPECT_EQ(idOf(line), "none") << line;
}

TEST(ParseRequest, TakesAnIDOfEveryKind) {
  const std::pair<const char*, const char*> table[] = {
      {R"("abc")", R"("abc")"},
      {R"("a/\u00e9")", R"("a\/é")"},
      {R"("")", R"("")"},
      {"7", "7"},
      {"-9223372036854775808", "-9223372036854775808"},
      {"7.9", "7"},
      {"-7.9", "-7"},
      {"1.5", "1"},
      {"1e3", "1000"},
      {"true", "1"},
      {"false", "0"},
      {"9223372036854775808", "9223372036854775807"},
      {"123456789012345678901234567890", "9223372036854775807"},
      {"-123456789012345678901234567890", "-9223372036854775808"},
      {"1e300", "9223372036854775807"},
      {"null", "null"},
      {"[1]", "null"},
      {"{}", "null"},
  };
  for (const auto& [id, expected] : table)
    EXPECT_EQ(reading(std::string(R"({"method":"m","id":)") + id + "}"),
              std::string(R"(m {"id":)") + expected + R"(,"jsonrpc":"2.0","result":null})")
        << id;
  EXPECT_EQ(reading(R"({"method":"m"})"), "m ");
}

TEST(ParseRequest, KeepsParamsThatAreAnObject) {
  EXPECT_EQ(reading(R"({"method":"m","params":{"a":1}})"), R"(m  {"a":1})");
  for (const char* params : {"[1,2]", "null", "\"x\"", "3"})
    EXPECT_EQ(reading(std::string(R"({"method":"m","params":)") + params + "}"), "m ") << params;
}

TEST(ParseRequest, IgnoresTheVersionAndUnknownKeysAndTakesTheLastOfARepeatedOne) {
  EXPECT_EQ(reading(R"( {"jsonrpc":"1.0","extra":[{}],"method":"a","method":"b"} )"), "b ");
}

TEST(EncodeError, SortsItsKeysAndEscapesSlashes) {
  StringSink sink;
  encodeError(sink, std::nullopt, JSONRPC::ErrorCode::methodNotFound, "a/\"b\"\n\xc3\xa9");
  EXPECT_EQ(sink.take(),
            R"({"error":{"code":-32601,"message":"a\/\"b\"\né"},"id":null,"jsonrpc":"2.0"})");
}

}  // namespace
}  // namespace tavi::mcp

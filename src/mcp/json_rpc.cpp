#include "mcp/json_rpc.h"

#include <limits>
#include <utility>

#include "mcp/nested_line.h"
#include "platform/text/utf8.h"

namespace tavi::mcp {
namespace {

namespace json = boost::json;
using JSONRPC::ErrorCode;

/// Truncates towards zero and clamps to the range of the type.
std::int64_t truncated(double number) {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (number >= limit) return std::numeric_limits<std::int64_t>::max();
  if (number <= -limit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(number);
}

RequestID requestID(const json::value& id) {
  switch (id.kind()) {
    case json::kind::string:
      return std::string(id.get_string());
    case json::kind::int64:
      return id.get_int64();
    case json::kind::uint64:  // always above the signed range
      return std::numeric_limits<std::int64_t>::max();
    case json::kind::double_:
      return truncated(id.get_double());
    case json::kind::bool_:
      return std::int64_t{id.get_bool()};
    default:
      return nullptr;
  }
}

std::optional<RequestID> idOf(std::string_view line) try {
  const auto written = writtenID(line);
  if (!written) return {};
  return requestID(parseJSON(*written));
} catch (const JSONNestedTooDeep&) {
  return nullptr;  // an array or an object, which counts as null
} catch (const JSONParseError&) {
  return {};
}

json::value parsedLine(std::string_view text) try {
  return parseJSON(text);
} catch (const JSONNestedTooDeep& fault) {
  throw LineNestedTooDeep(fault, idOf(text));
}

json::value parseTopLevel(std::string_view text) {
  json::value value = parsedLine(text);
  if (value.is_object()) return value;
  if (value.is_array()) throw JSONRPCError(ErrorCode::parseError, "invalid JSON");
  throw JSONParseError("not valid JSON: the text must be an object, not a single value");
}

void beginEnvelope(JSONWriter& writer, const RequestID& id) {
  writer.key("id");
  if (const auto* text = std::get_if<std::string>(&id)) {
    writer.string(*text);
  } else if (const auto* number = std::get_if<std::int64_t>(&id)) {
    writer.integer(*number);
  } else {
    writer.null();
  }
  writer.key("jsonrpc");
  writer.string("2.0");
}

}  // namespace

std::optional<ParsedRequest> parseRequest(std::string_view line) {
  const std::string_view text = platform::text::trimmingWhitespaceAndNewlines(line);
  if (text.empty()) return {};
  json::value value = parseTopLevel(text);
  json::object& members = value.get_object();
  const json::value* method = members.if_contains("method");
  if (!method || !method->is_string())
    throw JSONRPCError(ErrorCode::invalidRequest, "missing method");
  ParsedRequest request{.id = {}, .method = std::string(method->get_string()), .params = {}};
  if (const json::value* id = members.if_contains("id")) request.id = requestID(*id);
  if (json::value* params = members.if_contains("params"); params && params->is_object())
    request.params.emplace(std::move(params->get_object()));
  return request;
}

void encodeResult(ByteSink& sink, const RequestID& id, const ResultWriter& result) {
  JSONWriter writer(sink, JSONStyle::wire);
  writer.beginObject();
  beginEnvelope(writer, id);
  writer.key("result");
  result(writer);
  writer.endObject();
}

void encodeError(ByteSink& sink, const std::optional<RequestID>& id, ErrorCode code,
                 std::string_view message) {
  JSONWriter writer(sink, JSONStyle::wire);
  writer.beginObject();
  writer.key("error");
  writer.beginObject();
  writer.key("code");
  writer.integer(static_cast<int>(code));
  writer.key("message");
  writer.string(message);
  writer.endObject();
  beginEnvelope(writer, id.value_or(nullptr));
  writer.endObject();
}

}  // namespace tavi::mcp

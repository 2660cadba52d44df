#pragma once

#include <boost/json/object.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "domain/failure.h"
#include "json/json_reader.h"
#include "json/json_writer.h"

/// JSON-RPC 2.0 (https://www.jsonrpc.org), one object per line, without batches. All objects are
/// written with sorted keys.
namespace tavi::mcp {

namespace JSONRPC {
/// The error codes that JSON-RPC 2.0 defines (section 5.1).
enum class ErrorCode {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
};
}  // namespace JSONRPC

/// The request itself is invalid. Answered with an error object instead of a result.
class JSONRPCError : public Failure {
 public:
  JSONRPCError(JSONRPC::ErrorCode code, std::string message)
      : Failure(std::move(message)), code_(code) {}
  JSONRPC::ErrorCode code() const { return code_; }

 private:
  JSONRPC::ErrorCode code_;
};

/// The id of a request. A request without an id is a notification, one with the id null is not.
using RequestID = std::variant<std::string, std::int64_t, std::nullptr_t>;

/// The values of a line nest too deep. The answer can still carry the id of the request.
class LineNestedTooDeep : public JSONNestedTooDeep {
 public:
  LineNestedTooDeep(const JSONNestedTooDeep& fault, std::optional<RequestID> id)
      : JSONNestedTooDeep(fault), id_(std::move(id)) {}
  /// Absent if the line has no id, or it cannot be found.
  const std::optional<RequestID>& id() const { return id_; }

 private:
  std::optional<RequestID> id_;
};

/// A request or a notification.
struct ParsedRequest {
  std::optional<RequestID> id;  ///< absent for a notification
  std::string method;
  std::optional<boost::json::object> params;  ///< absent if missing or not an object
};

/// Parses a line; absent if it is blank. Throws JSONRPCError for an invalid request, and
/// JSONParseError (LineNestedTooDeep is one) if the line is not JSON.
std::optional<ParsedRequest> parseRequest(std::string_view line);

/// Writes the result of a request: one JSON value.
using ResultWriter = std::function<void(JSONWriter&)>;

/// Write a response object, without a line break.
void encodeResult(ByteSink& sink, const RequestID& id, const ResultWriter& result);
void encodeError(ByteSink& sink, const std::optional<RequestID>& id, JSONRPC::ErrorCode code,
                 std::string_view message);

/// The response if an error cannot be encoded either.
inline constexpr std::string_view kLastResortLine =
    R"({"jsonrpc":"2.0","id":null,"error":{"code":-32603,"message":"internal"}})";

}  // namespace tavi::mcp

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

/// JSON-RPC 2.0 (https://www.jsonrpc.org/specification), one object on one line; no batches.
/// Every line that is written has its keys sorted.
namespace tavi::mcp {

namespace JSONRPC {
enum class ErrorCode {
  parseError = -32700,
  invalidRequest = -32600,
  methodNotFound = -32601,
  invalidParams = -32602,
  internalError = -32603,
};
}  // namespace JSONRPC

/// What is wrong with a request itself.
class JSONRPCError : public Failure {
 public:
  JSONRPCError(JSONRPC::ErrorCode code, std::string message)
      : Failure(std::move(message)), code_(code) {}
  JSONRPC::ErrorCode code() const { return code_; }

 private:
  JSONRPC::ErrorCode code_;
};

/// A request without an id is a notification; an id of null is an id.
using RequestID = std::variant<std::string, std::int64_t, std::nullptr_t>;

/// A line whose values nest deeper than is read. It can still be answered by its id.
class LineNestedTooDeep : public JSONNestedTooDeep {
 public:
  LineNestedTooDeep(const JSONNestedTooDeep& fault, std::optional<RequestID> id)
      : JSONNestedTooDeep(fault), id_(std::move(id)) {}
  /// Nothing where the line has none, or it cannot be found.
  const std::optional<RequestID>& id() const { return id_; }

 private:
  std::optional<RequestID> id_;
};

struct ParsedRequest {
  std::optional<RequestID> id;
  std::string method;
  std::optional<boost::json::object> params;  ///< absent too when they are no object
};

/// Nothing for a blank line. Throws JSONRPCError, or JSONParseError for a line that is not JSON,
/// LineNestedTooDeep among them.
std::optional<ParsedRequest> parseRequest(std::string_view line);

/// Writes a value, which is the result of a request.
using ResultWriter = std::function<void(JSONWriter&)>;

/// Each writes one object, without a line end.
void encodeResult(ByteSink& sink, const RequestID& id, const ResultWriter& result);
void encodeError(ByteSink& sink, const std::optional<RequestID>& id, JSONRPC::ErrorCode code,
                 std::string_view message);

/// What goes out when even an error cannot be encoded.
inline constexpr std::string_view kLastResortLine =
    R"({"jsonrpc":"2.0","id":null,"error":{"code":-32603,"message":"internal"}})";

}  // namespace tavi::mcp

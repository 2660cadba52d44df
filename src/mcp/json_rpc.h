#pragma once

#include <boost/json/object.hpp>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

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
class JSONRPCError : public std::exception {
 public:
  JSONRPCError(JSONRPC::ErrorCode code, std::string message)
      : code_(code), message_(std::move(message)) {}
  JSONRPC::ErrorCode code() const { return code_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  JSONRPC::ErrorCode code_;
  std::string message_;
};

/// A request without an id is a notification; an id of null is an id.
using RequestID = std::variant<std::string, std::int64_t, std::nullptr_t>;

struct ParsedRequest {
  std::optional<RequestID> id;
  std::string method;
  std::optional<boost::json::object> params;  ///< absent too when they are no object
};

/// Nothing for a blank line. Throws JSONRPCError, or JSONParseError for a line that is not JSON.
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

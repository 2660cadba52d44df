#include "mcp/server.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <system_error>
#include <utility>

#include "domain/failure.h"
#include "mcp/line_reader.h"
#include "mcp/tool_result.h"

namespace tavi::mcp {
namespace {

namespace json = boost::json;
using JSONRPC::ErrorCode;

constexpr std::string_view kProtocolVersion = "2025-06-18";

void writeEmptyObject(JSONWriter& writer) {
  writer.raw("{}");
}

ResultWriter initializeResult(const std::string& version) {
  return [&version](JSONWriter& writer) {
    writer.beginObject();
    writer.key("capabilities");
    writer.raw(R"({"tools":{}})");
    writer.key("protocolVersion");
    writer.string(kProtocolVersion);
    writer.key("serverInfo");
    writer.beginObject();
    writer.key("name");
    writer.string("tavicli");
    writer.key("version");
    writer.string(version);
    writer.endObject();
    writer.endObject();
  };
}

ResultWriter toolList(const std::vector<MCPTool>& tools) {
  return [&tools](JSONWriter& writer) {
    writer.beginObject();
    writer.key("tools");
    writer.beginArray();
    for (const MCPTool& tool : tools) encodeDescriptor(writer, tool);
    writer.endArray();
    writer.endObject();
  };
}

/// False if a number is infinite: 1e400 can be parsed, but not written as JSON.
bool isEncodable(const json::value& value) {
  if (const json::array* elements = value.if_array())
    return std::ranges::all_of(*elements, isEncodable);
  if (const json::object* members = value.if_object())
    return std::ranges::all_of(*members, [](const auto& m) { return isEncodable(m.value()); });
  return !value.is_double() || std::isfinite(value.get_double());
}

std::string_view toolName(const json::object& params) {
  const json::value* name = params.if_contains("name");
  if (!name || !name->is_string())
    throw JSONRPCError(ErrorCode::invalidParams, "tool name required");
  return name->get_string();
}

const json::value& toolArguments(const json::object& params) {
  static const json::value none = json::object();
  const json::value* arguments = params.if_contains("arguments");
  if (!arguments || !arguments->is_object()) return none;
  if (!isEncodable(*arguments))
    throw JSONRPCError(ErrorCode::invalidParams, "arguments not encodable as JSON");
  return *arguments;
}

/// A call in progress. The store must live until the answer, which reads from it, is written.
struct ToolCall {
  std::unique_ptr<NoteStore> store;
  ResultWriter answer;
};

std::optional<BinaryFingerprint> baseline(const StalenessTracker::Provider& fingerprint) try {
  return fingerprint();
} catch (const std::exception&) {
  return {};
}

}  // namespace

void runServer(const ServerEnvironment& environment) try {
  MCPServer server(environment, MCPToolRegistry::tools(),
                   {baseline(environment.fingerprint), environment.fingerprint});
  LineReader lines(environment.input, environment.whileIdle);
  while (true) try {
      const auto line = lines.next();
      if (!line) return;
      server.handleLine(*line);
    } catch (const std::bad_alloc& failure) {
      server.refuseLine(failure);
    }
} catch (const OutputLost& lost) {
  if (lost.why != std::errc::broken_pipe)
    throw std::system_error(lost.why, "Could not write the output");
}

MCPServer::MCPServer(const ServerEnvironment& environment, std::vector<MCPTool> tools,
                     StalenessTracker staleness)
    : environment_(environment),
      tools_(std::move(tools)),
      staleness_(std::move(staleness)),
      out_(environment.output) {}

void MCPServer::handleLine(std::string_view line) {
  std::optional<ParsedRequest> request;
  try {
    request = parseRequest(line);
  } catch (const JSONRPCError& error) {
    return writeError({}, error.code(), error.message());
  } catch (const LineNestedTooDeep& error) {
    return writeError(error.id(), ErrorCode::parseError, error.what());
  } catch (const std::exception& error) {
    return refuseLine(error);
  }
  if (request) handle(*request);
}

void MCPServer::refuseLine(const std::exception& failure) {
  writeError({}, ErrorCode::parseError, failureMessage(failure));
}

/// Carries out a notification like a request, but does not respond to it.
void MCPServer::handle(const ParsedRequest& request) try {
  const ResultWriter result = dispatch(request.method, request.params ? &*request.params : nullptr);
  if (request.id) writeResult(*request.id, result);
} catch (const JSONRPCError& error) {
  if (request.id) writeError(request.id, error.code(), error.message());
} catch (const std::exception& error) {
  if (request.id) writeError(request.id, ErrorCode::internalError, failureMessage(error));
}

ResultWriter MCPServer::dispatch(std::string_view method, const json::object* params) {
  if (method == "initialize") return initializeResult(environment_.version);
  if (method == "notifications/initialized") return writeEmptyObject;
  if (method == "ping") return writeEmptyObject;
  if (method == "tools/list") return toolList(tools_);
  if (method == "tools/call") return callTool(params);
  throw JSONRPCError(ErrorCode::methodNotFound, "method not found: " + std::string(method));
}

ResultWriter MCPServer::callTool(const json::object* params) {
  if (staleness_.checkForStaleness(environment_.now())) writeStaleNotification();
  if (!params) throw JSONRPCError(ErrorCode::invalidParams, "params required");
  const MCPTool& tool = toolNamed(toolName(*params));
  const json::value& arguments = toolArguments(*params);
  const bool stale = staleness_.staleFlag();
  const auto call = std::make_shared<ToolCall>();
  try {
    call->store = environment_.createStore();
    call->answer = tool.call(arguments, *call->store);
  } catch (const std::exception& failure) {
    return [=, message = failureMessage(failure)](JSONWriter& writer) {
      writeToolFailure(writer, message, stale);
    };
  }
  if (!tool.metadata.readOnlyHint) environment_.postRefresh();
  return [=, name = tool.metadata.name](JSONWriter& writer) {
    writeToolResult(writer, name, call->answer, stale);
  };
}

const MCPTool& MCPServer::toolNamed(std::string_view name) const {
  const auto found =
      std::ranges::find(tools_, name, [](const MCPTool& tool) { return tool.metadata.name; });
  if (found == tools_.end())
    throw JSONRPCError(ErrorCode::invalidParams, "unknown tool: " + std::string(name));
  return *found;
}

/// Only a tool's answer can fail here, since its rows are read while they are written. It becomes
/// an ordinary tool failure, which is possible because LineSink holds back an unfinished line.
void MCPServer::writeResult(const RequestID& id, const ResultWriter& result) {
  try {
    encodeResult(out_, id, result);
  } catch (const std::exception& failure) {
    out_.abandonLine();
    encodeResult(out_, id, [&](JSONWriter& writer) {
      writeToolFailure(writer, failureMessage(failure), staleness_.staleFlag());
    });
  }
  out_.finishLine();
}

void MCPServer::writeError(const std::optional<RequestID>& id, ErrorCode code,
                           std::string_view message) {
  try {
    encodeError(out_, id, code, message);
  } catch (const std::exception&) {
    out_.abandonLine();
    out_.append(kLastResortLine);
  }
  out_.finishLine();
}

void MCPServer::writeStaleNotification() {
  JSONWriter writer(out_, JSONStyle::wire);
  writer.beginObject();
  writer.key("jsonrpc");
  writer.string("2.0");
  writer.key("method");
  writer.string("notifications/message");
  writer.key("params");
  writer.beginObject();
  writer.key("data");
  writer.string(kStaleWarning);
  writer.key("level");
  writer.string("warning");
  writer.key("logger");
  writer.string("tavicli");
  writer.endObject();
  writer.endObject();
  out_.finishLine();
}

}  // namespace tavi::mcp

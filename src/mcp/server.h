#pragma once

#include <boost/json/object.hpp>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domain/note_store.h"
#include "mcp/json_rpc.h"
#include "mcp/line_sink.h"
#include "mcp/staleness_tracker.h"
#include "mcp/tool_registry.h"

/// The Model Context Protocol (https://modelcontextprotocol.io, 2025-06-18) over stdio.
namespace tavi::mcp {

/// What the server needs from the process that it runs in.
struct ServerEnvironment {
  std::function<std::unique_ptr<NoteStore>()> createStore;  ///< may throw; once per `tools/call`
  /// Called while no line comes, until it gives false or a line is there; it returns within some
  /// milliseconds. May be empty.
  std::function<bool()> whileIdle = {};
  std::function<void()> postRefresh;  ///< after a tool that may have changed something
  std::string version;
  int input = 0;
  int output = 1;
  StalenessTracker::Provider fingerprint = BinaryFingerprint::current;
  std::function<StalenessTracker::Clock::time_point()> now = StalenessTracker::Clock::now;
};

/// Serves until the end of input, or until nobody reads the output any more. Throws
/// std::system_error when the output cannot be written for another reason.
void runServer(const ServerEnvironment& environment);

/// Answers requests one at a time. The only state between them is whether the server is stale.
class MCPServer {
 public:
  /// `environment` must outlive the server; its `input` is not read here.
  MCPServer(const ServerEnvironment& environment, std::vector<MCPTool> tools,
            StalenessTracker staleness);

  /// Handles one line of input: writes no line, its answer, or a notification and its answer.
  /// Throws OutputLost only.
  void handleLine(std::string_view line);
  /// Answers a line that cannot be read. Throws OutputLost only.
  void refuseLine(const std::exception& failure);

 private:
  /// The result of a request, to be written. Throws JSONRPCError.
  ResultWriter dispatch(std::string_view method, const boost::json::object* params);
  ResultWriter callTool(const boost::json::object* params);
  const MCPTool& toolNamed(std::string_view name) const;

  void handle(const ParsedRequest& request);
  void writeResult(const RequestID& id, const ResultWriter& result);
  void writeError(const std::optional<RequestID>& id, JSONRPC::ErrorCode code,
                  std::string_view message);
  void writeStaleNotification();

  const ServerEnvironment& environment_;
  std::vector<MCPTool> tools_;
  StalenessTracker staleness_;
  LineSink out_;
};

}  // namespace tavi::mcp

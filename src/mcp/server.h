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

/// The dependencies of the server on its process.
struct ServerEnvironment {
  std::function<std::unique_ptr<NoteStore>()> createStore;  ///< once per `tools/call`; may throw
  /// Called repeatedly while the client sends nothing, until it returns false. Each call must take
  /// only a few milliseconds. May be empty.
  std::function<bool()> whileIdle = {};
  std::function<void()> postRefresh;  ///< called after a tool that may have changed notes
  std::string version;                ///< of the program, for `initialize`
  int input = 0;                      ///< file descriptor
  int output = 1;                     ///< file descriptor
  StalenessTracker::Provider fingerprint = BinaryFingerprint::current;
  std::function<StalenessTracker::Clock::time_point()> now = StalenessTracker::Clock::now;
};

/// Serves until the end of input or until the client closes the output. Throws std::system_error if
/// the output cannot be written for another reason.
void runServer(const ServerEnvironment& environment);

/// Answers requests one at a time. The only state between them is whether the server is stale.
class MCPServer {
 public:
  /// `environment` must outlive the server, which does not read its `input`.
  MCPServer(const ServerEnvironment& environment, std::vector<MCPTool> tools,
            StalenessTracker staleness);

  /// Handles one line of input. Writes the response, if there is one, and before it a notification
  /// if the server has just become stale. Throws only OutputLost.
  void handleLine(std::string_view line);
  /// Responds to a line that could not be read. Throws only OutputLost.
  void refuseLine(const std::exception& failure);

 private:
  /// Carries out a request. The result is computed while it is written. Throws JSONRPCError.
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

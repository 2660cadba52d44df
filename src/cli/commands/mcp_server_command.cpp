#include "cli/commands/mcp_server_command.h"

#include "cli/session.h"
#include "cli/version.h"
#include "mcp/server.h"
#include "store/refresh_bridge.h"

namespace tavi {

CommandConfiguration MCPServerCommand::configuration() {
  return {.commandName = "mcp-server",
          .abstract = "MCP server over stdio — alternative interface to the CLI."};
}

void MCPServerCommand::run() {
  StoreKeeper keeper;
  mcp::runServer({.createStore = [&] { return Session::current().makeStore({.keeper = &keeper}); },
                  .whileIdle = [&] { return keeper.work(); },
                  .postRefresh = TaviCLIBridge::requestAppRefresh,
                  .version = versionString()});
}

std::string_view MCPServerCommand::footer() const {
  return R"(USAGE:
  Configure an MCP-aware client (an IDE, etc.)
  to launch the tavicli binary with the `mcp-server` argument. The server
  speaks JSON-RPC 2.0 with line-delimited JSON framing on stdin/stdout.

  Tools cover the same operation set as the CLI subcommands. Where the
  surfaces' needs differ they diverge intentionally — overwrite_note
  requires baseHash via MCP (not via CLI), MCP exposes
  expectedRemovedAttachments for declarative gating, and CLI exposes
  --force / --no-update-modified for human ergonomics. Each tool carries
  readOnlyHint / destructiveHint annotations so well-behaved clients can
  gate destructive operations behind explicit user confirmation.

PRIVACY:
  The server reads and writes the local Tavi database in place. No data
  is sent over the network and no telemetry is collected.)";
}

}  // namespace tavi

#pragma once

#include "cli/commands/command.h"

namespace tavi {

/// `tavicli mcp-server`: see mcp::runServer.
class MCPServerCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

}  // namespace tavi

#pragma once

#include "cli/commands/command.h"

namespace tavi {

class MCPServerCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

}  // namespace tavi

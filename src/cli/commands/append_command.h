#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"

namespace tavi {

/// `tavicli append`: see AppendToNoteOp.
class AppendCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  std::optional<std::string> content_;
  std::string position_ = "end";
  ModificationDateOption date_;
};

}  // namespace tavi

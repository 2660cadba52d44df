#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"

namespace tavi {

/// `tavicli overwrite`: see OverwriteNoteOp.
class OverwriteCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  std::optional<std::string> content_, base_;
  ModificationDateOption date_;
  bool force_ = false;
};

}  // namespace tavi

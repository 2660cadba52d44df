#pragma once

#include <string>
#include <vector>

#include "cli/commands/command.h"
#include "operations/write_operations.h"

namespace tavi {

/// `tavicli edit`: see EditNoteOp.
class EditCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  /// Pairs each --find with a value of the one action that was given. Throws TaviCLIError.
  std::vector<NoteEdit> edits() const;

  NoteOptions note_;
  std::vector<std::string> find_, replace_, insertAfter_, insertBefore_;
  bool all_ = false;
  bool ignoreCase_ = false;
  bool word_ = false;
  ModificationDateOption date_;
  bool force_ = false;
};

}  // namespace tavi

#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"

namespace tavi {

/// `tavicli open`: see OpenNoteOp.
class OpenCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  std::optional<std::string> header_;
  bool edit_ = false;
  bool newWindow_ = false;
  bool floating_ = false;
};

}  // namespace tavi

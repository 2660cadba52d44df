#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

namespace tavi {

/// `tavicli create`: see CreateNoteOp.
class CreateCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  std::optional<std::string> title_, content_, tags_;
  bool ifNotExists_ = false;
  FormatOptions options_{fieldNames<Note>};
};

}  // namespace tavi

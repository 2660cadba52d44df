#pragma once

#include "cli/commands/command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

namespace tavi {

/// `tavicli show`: see GetNoteOp.
class ShowCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  FormatOptions options_{fieldNames<Note>};
};

}  // namespace tavi

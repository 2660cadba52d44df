#pragma once

#include <cstdint>
#include <optional>

#include "cli/commands/command.h"
#include "cli/output/output_format.h"

namespace tavi {

/// `tavicli cat`: see ReadNoteContentOp.
class CatCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  std::optional<std::int64_t> offset_, limit_;
  FormatOnlyOptions options_;
};

}  // namespace tavi

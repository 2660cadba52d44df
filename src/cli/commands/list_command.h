#pragma once

#include "cli/commands/command.h"
#include "cli/commands/listing.h"

namespace tavi {

/// `tavicli list`: see ListNotesOp.
class ListCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  ListingOptions listing_{" Default: all."};
  std::optional<std::string> tag_;
  bool count_ = false;
  FormatOptions options_{fieldNames<Note>};
};

}  // namespace tavi

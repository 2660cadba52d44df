#pragma once

#include "cli/commands/command.h"
#include "cli/commands/listing.h"

namespace tavi {

/// `tavicli search`: see SearchNotesOp. Accepts the query as a positional or as --query.
class SearchCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  std::optional<std::string> queryArg_, query_;
  ListingOptions listing_;
  bool count_ = false;
  FormatOptions options_{fieldNames<SearchResultWithContent>};
};

}  // namespace tavi

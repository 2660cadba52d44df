#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/commands/command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"
#include "operations/read_operations.h"

namespace tavi {

/// `tavicli search-in`: see SearchInNoteOp.
class SearchInCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_;
  std::optional<std::string> string_;
  std::int64_t context_ = SearchInNoteOp::defaultContext;
  std::optional<std::int64_t> limit_;
  bool count_ = false;
  FormatOptions options_{fieldNames<SearchMatch>};
};

}  // namespace tavi

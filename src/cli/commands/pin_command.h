#pragma once

#include "cli/commands/command.h"
#include "cli/commands/note_list_command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"
#include "operations/pin_operations.h"

/// `pin` and its subcommands.
namespace tavi {

/// `tavicli pin list`: see ListPinsOp.
class ListPinsCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_{ListPinsOp::Fields::id.description, ListPinsOp::Fields::title.description};
  FormatOptions options_{fieldNames<PinRecord>};
};

/// `tavicli pin add`: see AddPinsOp.
class AddPinCommand : public NoteListCommand {
 public:
  AddPinCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli pin remove`: see RemovePinsOp.
class RemovePinCommand : public NoteListCommand {
 public:
  RemovePinCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli pin`: lists pins unless a subcommand is given.
class PinCommand : public ArgumentParser::ParsableCommand {
 public:
  static CommandConfiguration configuration();
};

}  // namespace tavi

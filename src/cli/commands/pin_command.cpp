#include "cli/commands/pin_command.h"

#include <utility>
#include <vector>

#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"

namespace tavi {
namespace {

constexpr std::string_view idHelp = "Note ID, followed by pin targets.";

}  // namespace

CommandConfiguration PinCommand::configuration() {
  using ArgumentParser::commandType;
  return {.commandName = "pin",
          .abstract = "Manage pins on a note.",
          .subcommands = {commandType<ListPinsCommand>(), commandType<AddPinCommand>(),
                          commandType<RemovePinCommand>()},
          .defaultSubcommand = commandType<ListPinsCommand>()};
}

CommandConfiguration ListPinsCommand::configuration() {
  return commandFor<ListPinsOp>("list");
}

void ListPinsCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.group(options_);
}

void ListPinsCommand::run() {
  NoteStore& store = openStore();
  std::vector<PinRecord> rows;
  for (const auto& pin : ListPinsOp::execute({.id = note_.id, .title = note_.title}, store))
    rows.push_back({pin});
  const auto fields = OutputFormatter::resolveFields<PinRecord>(options_);
  RecordWriter(Session::current().output, options_.format)
      .writeRows(*recordList(std::move(rows)), fields);
}

std::string_view ListPinsCommand::footer() const {
  return R"(OUTPUT:
  Default fields: pin
  "global" for the global pin, #tag for tag-specific pins.
  Empty output (with id/title) means the note is not pinned.
  Empty output (without id/title) means no notes are pinned anywhere.

  Use --fields to select fields. Use --format to change output format.

NOTE:
  With id or title: lists pin contexts on that single note.
  Without arguments: lists every pin context in use across the database.

EXAMPLES:
  tavicli pin list                   # every pin context in use
  tavicli pin list <id>              # pins on a single note
  tavicli pin list --title "Mars" --format json)";
}

AddPinCommand::AddPinCommand()
    : NoteListCommand(
          {.id = idHelp,
           .names = AddPinsOp::Fields::targets,
           .title = AddPinsOp::Fields::title.description,
           .candidates = [](auto&, auto& line) { return completions::pinTargets(line); }}) {}

CommandConfiguration AddPinCommand::configuration() {
  return commandFor<AddPinsOp>("add");
}

void AddPinCommand::run() {
  execute<AddPinsOp>(&AddPinsInput::targets);
}

std::string_view AddPinCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Use "global" to pin in All Notes. Any other value is treated as
  a tag name. Already-applied pins are silently skipped.
  Atomic: if any tag does not exist, no pins are applied.

EXAMPLES:
  tavicli pin add <id> global
  tavicli pin add <id> work projects
  tavicli pin add --title "Mars" global work)";
}

RemovePinCommand::RemovePinCommand()
    : NoteListCommand({.id = idHelp,
                       .names = RemovePinsOp::Fields::targets,
                       .title = RemovePinsOp::Fields::title.description,
                       .candidates = completions::pinsOf}) {}

CommandConfiguration RemovePinCommand::configuration() {
  return commandFor<RemovePinsOp>("remove");
}

void RemovePinCommand::run() {
  execute<RemovePinsOp>(&RemovePinsInput::targets);
}

std::string_view RemovePinCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Atomic: if any tag does not exist, no pins are removed.

EXAMPLES:
  tavicli pin remove <id> global
  tavicli pin remove <id> work
  tavicli pin remove --title "Mars" global work)";
}

}  // namespace tavi

#include "cli/commands/open_command.h"

#include "cli/session.h"
#include "operations/location_operations.h"

namespace tavi {

CommandConfiguration OpenCommand::configuration() {
  return commandFor<OpenNoteOp>("open");
}

void OpenCommand::declare(ArgumentSet& args) {
  using Fields = OpenNoteOp::Fields;
  args.group(note_);
  args.option(header_, "--header").help(Fields::header.description);
  args.flag(edit_, "--edit").help(Fields::edit.description);
  args.flag(newWindow_, "--new-window").help(Fields::newWindow.description);
  args.flag(floating_, "--float").help(Fields::floating.description);
}

void OpenCommand::run() {
  NoteStore& store = openStore();
  OpenNoteOp::execute({.id = note_.id,
                       .title = note_.title,
                       .header = header_,
                       .edit = edit_,
                       .newWindow = newWindow_,
                       .floating = floating_},
                      store, Session::current().openURL);
}

std::string_view OpenCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr. Tavi is brought to the foreground with the note open.

EXAMPLES:
  tavicli open <id>
  tavicli open --title "Mars" --header "Moons" --edit
  tavicli open <id> --new-window)";
}

}  // namespace tavi

#include "cli/commands/append_command.h"

#include "cli/session.h"
#include "cli/standard_input.h"
#include "operations/write_operations.h"

namespace tavi {

CommandConfiguration AppendCommand::configuration() {
  return commandFor<AppendToNoteOp>("append");
}

void AppendCommand::declare(ArgumentSet& args) {
  using Fields = AppendToNoteOp::Fields;
  args.group(note_);
  args.option(content_, {"-c", "--content"})
      .takesAnything()
      .help(help(Fields::content.description, readFromStdin, interpretsEscapes));
  args.option(position_, "--position")
      .help(Fields::position.description)
      .completes({"beginning", "end"});
  args.group(date_);
}

void AppendCommand::run() {
  NoteStore& store = openStore({.preserveModificationDate = date_.preserve});
  AppendToNoteOp::execute({.id = note_.id,
                           .title = note_.title,
                           .content = textOrStdin(content_).value_or(""),
                           .position = position_},
                          store);
}

std::string_view AppendCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

EXAMPLES:
  tavicli append <id> --content "New paragraph"
  printf "New content" | tavicli append <id>
  tavicli append --title "Mars" --content "Update" --position beginning)";
}

}  // namespace tavi

#include "cli/commands/move_commands.h"

#include "cli/session.h"
#include "operations/location_operations.h"

namespace tavi {

template <class Operation>
void MoveCommand::move() const {
  NoteStore& store = openStore();
  Operation::execute({.id = note_.id, .title = note_.title}, store);
}

CommandConfiguration TrashCommand::configuration() {
  return commandFor<TrashNoteOp>("trash");
}

void TrashCommand::run() {
  move<TrashNoteOp>();
}

std::string_view TrashCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Soft-delete. The note can be restored with `tavicli restore`.

EXAMPLES:
  tavicli trash <id>
  tavicli trash --title "Old Note")";
}

CommandConfiguration ArchiveCommand::configuration() {
  return commandFor<ArchiveNoteOp>("archive");
}

void ArchiveCommand::run() {
  move<ArchiveNoteOp>();
}

std::string_view ArchiveCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  The note is hidden from the active notes list but not deleted. Use
  `tavicli restore` to move it back.

EXAMPLES:
  tavicli archive <id>
  tavicli archive --title "Finished Project")";
}

CommandConfiguration RestoreCommand::configuration() {
  return commandFor<RestoreNoteOp>("restore");
}

void RestoreCommand::run() {
  move<RestoreNoteOp>();
}

std::string_view RestoreCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Moves a trashed or archived note back to the active notes list.
  Succeeds silently if the note is already in the notes list.

EXAMPLES:
  tavicli restore <id>
  tavicli restore --title "Recovered Draft")";
}

}  // namespace tavi

#include "cli/commands/overwrite_command.h"

#include "cli/session.h"
#include "cli/standard_input.h"
#include "operations/write_operations.h"

namespace tavi {

CommandConfiguration OverwriteCommand::configuration() {
  return commandFor<OverwriteNoteOp>("overwrite");
}

void OverwriteCommand::declare(ArgumentSet& args) {
  using Fields = OverwriteNoteOp::Fields;
  args.group(note_);
  args.option(content_, {"-c", "--content"})
      .takesAnything()
      .help(help(Fields::content.description, readFromStdin, interpretsEscapes));
  args.option(base_, "--base").help(Fields::baseHash.description);
  args.group(date_);
  args.flag(force_, "--force")
      .help(
          "Bypass the attachment-removal safety gate. Use after reading a rejection message to "
          "confirm the removal is intentional.");
}

void OverwriteCommand::run() {
  NoteStore& store = openStore({.preserveModificationDate = date_.preserve});
  OverwriteNoteOp::execute({.id = note_.id,
                            .title = note_.title,
                            .content = textOrStdin(content_).value_or(""),
                            .baseHash = base_},
                           store, force_);
}

std::string_view OverwriteCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Content replaces the entire note. Tavi derives the title from the
  first heading and tags from #hashtags. Include both to preserve
  them. Attachment references (inline markdown links) must also be
  present in the new content; omitting them removes the attachments
  from the note.

HASH GUARD (--base):
  Pass --base <hash> (from tavicli show --fields hash) to reject the
  write if the note changed since you last read it. This prevents
  overwriting edits made by Tavi or another client. Without --base
  the write is unconditional.

SAFETY GATE (--force):
  Attachment removals are rejected by default unless they are
  deliberately confirmed. When the gate fires, the rejection message
  names the files that would be dropped; re-run with --force if the
  removal is intentional. Tag changes are not gated — `add_tags`
  makes recovery cheap.

EXAMPLES:
  tavicli overwrite <id> --base abc1234 --content "# Title\nBody"
  printf "# Title\nBody" | tavicli overwrite <id> --base abc1234
  tavicli overwrite <id> --content "# Title\nBody"
  tavicli overwrite <id> --content "# Title only" --force)";
}

}  // namespace tavi

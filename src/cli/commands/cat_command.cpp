#include "cli/commands/cat_command.h"

#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "operations/read_operations.h"

namespace tavi {

CommandConfiguration CatCommand::configuration() {
  return commandFor<ReadNoteContentOp>("cat");
}

void CatCommand::declare(ArgumentSet& args) {
  using Fields = ReadNoteContentOp::Fields;
  args.group(note_);
  args.option(offset_, {"-o", "--offset"}).help(Fields::offset.description);
  args.option(limit_, {"-n", "--limit"}).help(Fields::limit.description);
  args.group(options_);
}

void CatCommand::run() {
  NoteStore& store = openStore();
  const std::string content = ReadNoteContentOp::execute(
      {.id = note_.id, .title = note_.title, .offset = offset_, .limit = limit_}, store);
  RecordWriter(Session::current().output, options_.format).writeContent(content);
}

std::string_view CatCommand::footer() const {
  return R"(OUTPUT:
  Default: raw note content (no escaping, no structured fields).
  --format json: `{"content":"..."}` with JSON-escaped content.
  Use --offset/--limit for byte-range slicing.
  For structured metadata output, use `tavicli show`.

EXAMPLES:
  tavicli cat <id>
  tavicli cat --title "Mars"
  tavicli cat <id> --offset 0 --limit 500)";
}

}  // namespace tavi

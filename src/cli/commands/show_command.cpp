#include "cli/commands/show_command.h"

#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "operations/read_operations.h"

namespace tavi {

CommandConfiguration ShowCommand::configuration() {
  return commandFor<GetNoteOp>("show");
}

void ShowCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.group(options_);
}

void ShowCommand::run() {
  NoteStore& store = openStore();
  const auto output =
      GetNoteOp::execute({.id = note_.id,
                          .title = note_.title,
                          .includeContent = OutputFormatter::selectsContent(options_)},
                         store);
  const auto write = [&]<class Record>(const Record& record) {
    const auto fields = OutputFormatter::resolveFields<Record>(options_);
    RecordWriter(Session::current().output, options_.format).writeRecord(record, fields);
  };
  std::visit(write, output);
}

std::string_view ShowCommand::footer() const {
  return R"(OUTPUT:
  Default fields: id, title, tags
  All fields: id, title, locked, tags, hash, length, created, modified, pins,
              location, todos, done, attachments, content
  Content is excluded from "all". Use --fields all,content to include it.

  Use --fields to select fields. Use --format to change output format.
  Locked notes return metadata but reject --fields content.

EXAMPLES:
  tavicli show <id>
  tavicli show --title "Mars" --format json --fields all
  tavicli show <id> --fields all,content)";
}

}  // namespace tavi

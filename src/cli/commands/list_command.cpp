#include "cli/commands/list_command.h"

namespace tavi {

CommandConfiguration ListCommand::configuration() {
  return commandFor<ListNotesOp>("list");
}

void ListCommand::declare(ArgumentSet& args) {
  args.group(listing_);
  args.option(tag_, "--tag")
      .help(ListNotesOp::Fields::tag.description)
      .completes(completions::tags);
  args.flag(count_, "--count").help("Print only the total number of matching notes.");
  args.group(options_);
}

void ListCommand::run() {
  NoteStore& store = openStore();
  ListNotesInput input{.sort = listing_.sort, .location = listing_.location, .tag = tag_};
  if (count_) {
    listing_.refuseWithCount();
    RecordWriter(Session::current().output, options_.format)
        .writeCount(countOf(ListNotesOp::execute(input, store)));
    return;
  }
  if (listing_.limit == 0) return;
  input.limit = listing_.limit;
  input.offset = listing_.offset;
  input.includeContent = OutputFormatter::selectsContent(options_);
  input.detailed = OutputFormatter::selectsDetails(options_);
  writeLists(ListNotesOp::execute(input, store), options_);
}

std::string_view ListCommand::footer() const {
  return R"(OUTPUT:
  Default fields: id, title, tags
  All fields: id, title, locked, tags, hash, length, created, modified, pins,
              location, todos, done, attachments, content
  Content is excluded from "all". Use --fields all,content to include it.

  Use --fields to select fields. Use --format to change output format.
  Returns all matches by default. Use -n to cap results.

EXAMPLES:
  tavicli list
  tavicli list --tag work
  tavicli list --tag work --sort modified:asc --fields id,title,modified
  tavicli list -n 20 --format json --fields all
  tavicli list --count

Empty results: `[]` on stdout with --format json; "No notes found." on stderr otherwise. Exit 0 either way.

NOTE:
  --tag matches the tag and any nested children. For richer queries
  (negation, multiple tags, dates) use search.)";
}

}  // namespace tavi

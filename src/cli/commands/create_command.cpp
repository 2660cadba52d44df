#include "cli/commands/create_command.h"

#include <vector>

#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "cli/standard_input.h"
#include "domain/tag_parser.h"
#include "operations/comma_list.h"
#include "operations/write_operations.h"

namespace tavi {
namespace {

std::vector<std::string> tagNames(const std::optional<std::string>& list) {
  std::vector<std::string> names = trimmedPieces(list.value_or(""));
  for (std::string& name : names) name = TagParser::canonicalName(name);
  return names;
}

}  // namespace

CommandConfiguration CreateCommand::configuration() {
  return commandFor<CreateNoteOp>("create");
}

void CreateCommand::declare(ArgumentSet& args) {
  using Fields = CreateNoteOp::Fields;
  args.argument(title_, "title").help(Fields::title.description);
  args.option(content_, {"-c", "--content"})
      .takesAnything()
      .help(help(Fields::content.description, readFromStdin, interpretsEscapes));
  args.option(tags_, "--tags")
      .help(help("Comma-separated tags. ", Fields::tags.description))
      .completes(completions::commaSeparated(completions::tags));
  args.flag(ifNotExists_, "--if-not-exists").help(Fields::ifNotExists.description);
  args.group(options_);
}

void CreateCommand::run() {
  NoteStore& store = openStore();
  const Note note = CreateNoteOp::execute({.title = title_,
                                           .content = textOrStdin(content_),
                                           .tags = tagNames(tags_),
                                           .ifNotExists = ifNotExists_},
                                          store);
  const auto fields = OutputFormatter::resolveFields<Note>(options_);
  RecordWriter(Session::current().output, options_.format).writeRecord(note, fields);
}

std::string_view CreateCommand::footer() const {
  return R"(OUTPUT:
  Default fields: id, title, tags
  All fields: id, title, tags, hash, length, created, modified, pins,
              location, todos, done, attachments, content
  Content is excluded from "all". Use --fields all,content to include it.

  Use --fields to select fields. Use --format to change output format.

NOTE:
  Title is optional.  When omitted, Tavi derives it from the first
  # heading or first line of the content.

  When a title is given, Tavi auto-generates the # heading from it.
  --content is body text only.  If --content starts with a # heading
  that matches the title, it is stripped automatically to prevent
  duplication.

  --tags and #hashtags in content both add tags independently.
  Prefer --tags: it inserts tags at the position configured in Tavi
  settings.

EXAMPLES:
  tavicli create "My Note" --content "Body text"
  tavicli create --content "# Quick Capture\nSome thoughts"
  tavicli create "My Note" --tags "work,draft" --format json
  printf "line1\nline2" | tavicli create "My Note" --fields id,hash)";
}

}  // namespace tavi

#include "cli/commands/search_in_command.h"

#include "cli/cli_error.h"
#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"

namespace tavi {

CommandConfiguration SearchInCommand::configuration() {
  return commandFor<SearchInNoteOp>("search-in");
}

void SearchInCommand::declare(ArgumentSet& args) {
  using Fields = SearchInNoteOp::Fields;
  args.group(note_);
  args.option(string_, {"-s", "--string"})
      .takesAnything()
      .help(help(Fields::string.description, interpretsEscapes));
  args.option(context_, "--context").help(Fields::context.description);
  args.option(limit_, {"-n", "--limit"}).help(Fields::limit.description);
  args.flag(count_, "--count").help("Print only the total number of matches.");
  args.group(options_);
}

void SearchInCommand::run() {
  NoteStore& store = openStore();
  if (!string_) throw TaviCLIError::usage("--string is required");
  if (count_ && limit_) throw TaviCLIError::usage("--count cannot be combined with --limit");

  auto matches = SearchInNoteOp::execute({.id = note_.id,
                                          .title = note_.title,
                                          .string = OutputFormatter::unescape(*string_),
                                          .context = context_,
                                          .limit = limit_},
                                         store);
  RecordWriter writer(Session::current().output, options_.format);
  if (count_) return writer.writeCount(static_cast<std::int64_t>(matches.size()));
  const auto fields = OutputFormatter::resolveFields<SearchMatch>(options_);
  writer.writeRows(*recordList(std::move(matches)), fields);
}

std::string_view SearchInCommand::footer() const {
  return R"(OUTPUT:
  Default fields: offset, snippet
  Snippets use \n, \t, \\ escaping in TSV.
  Empty output with exit 0 means no matches were found.

  Use --fields to select fields. Use --format to change output format.

EXAMPLES:
  tavicli search-in <id> --string "TODO"
  tavicli search-in --title "Mars" --string "water" --format json
  tavicli search-in <id> --string "TODO" --count)";
}

}  // namespace tavi

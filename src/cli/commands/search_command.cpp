#include "cli/commands/search_command.h"

namespace tavi {

CommandConfiguration SearchCommand::configuration() {
  return commandFor<SearchNotesOp>("search");
}

void SearchCommand::declare(ArgumentSet& args) {
  const std::string_view query = SearchNotesOp::Fields::query.description;
  args.argument(queryArg_, "query-arg").help(query).completes(completions::queries);
  args.option(query_, {"-q", "--query"})
      .takesAnything()
      .help(help(query, " Use this form for queries starting with -."))
      .completes(completions::queries);
  args.group(listing_);
  args.flag(count_, "--count").help("Print only the total number of matching notes.");
  args.group(options_);
}

void SearchCommand::run() {
  NoteStore& store = openStore();
  if (query_ && queryArg_) {
    throw TaviCLIError::usage("Specify the query as a positional argument or --query, not both");
  }
  SearchNotesInput input{.query = query_ ? *query_ : queryArg_.value_or(""),
                         .sort = listing_.sort,
                         .location = listing_.location};
  if (count_) {
    listing_.refuseWithCount();
    RecordWriter(Session::current().output, options_.format)
        .writeCount(countOf(SearchNotesOp::execute(input, store)));
    return;
  }
  if (listing_.limit == 0) return;
  input.limit = listing_.limit;
  input.offset = listing_.offset;
  input.includeContent = OutputFormatter::selectsContent(options_);
  input.detailed = OutputFormatter::selectsDetails(options_);
  writeLists(SearchNotesOp::execute(input, store), options_);
}

std::string_view SearchCommand::footer() const {
  return R"(OUTPUT:
  Default fields: id, title, tags, matches
  All fields: id, title, locked, tags, hash, length, created, modified, pins,
              location, todos, done, attachments, content, matches
  Content is excluded from "all". Use --fields all,content to include it.
  matches = 0 when query has no text terms (e.g. @today, #tag).

  Use --fields to select fields. Use --format to change output format.
  Returns all matches by default. Use -n to cap results.

SEARCH SYNTAX:
  Text:       keyword, "exact phrase", word1 or word2
  Exclude:    prefix any term or directive with - to negate it
  Tags:       #tag, !#tag (exact tag, no children), #*/tag (subtags only)
  Dates:      @today, @yesterday, @lastXdays (e.g. @last7days),
              @date(YYYY-MM-DD), @date(<date), @date(>date)
  Created:    @ctoday, @createdXdays (e.g. @created7days), @cdate(YYYY-MM-DD)
  Tasks:      @todo (has incomplete), @done (all complete), @task (any)
  Tags:       @tagged, @untagged
  Title:      @title restricts text terms to titles only
  Pins:       @pinned (globally-pinned notes only)
  Content:    @images, @files, @attachments, @code
  State:      @locked, @readonly, @empty, @untitled
  Links:      @wikilinks, @backlinks
  Other:      @ocr (search attachment text)

  Combine freely: tavicli search "@today @todo meeting"

EXAMPLES:
  tavicli search "meeting notes"
  tavicli search "@today @todo" --format json
  tavicli search --query "- [ ]" --fields id,title,matches
  tavicli search "@todo" --count

Empty results: `[]` on stdout with --format json; "No notes found." on stderr otherwise. Exit 0 either way.)";
}

}  // namespace tavi

#include "cli/commands/edit_command.h"

#include "cli/cli_error.h"
#include "cli/output/output_formatter.h"
#include "cli/session.h"
#include "domain/store_errors.h"

namespace tavi {
namespace {

/// An action of the command line: its option, the values given, and the member of NoteEdit for
/// them.
struct Action {
  std::string name;
  const std::vector<std::string>& values;
  std::optional<std::string> NoteEdit::*member;
};

}  // namespace

CommandConfiguration EditCommand::configuration() {
  return commandFor<EditNoteOp>("edit");
}

void EditCommand::declare(ArgumentSet& args) {
  const auto text = [&](std::vector<std::string>& values, const char* name,
                        std::string_view abstract) {
    args.option(values, name)
        .takesAnything()
        .help(help(abstract, " Repeat for batch edits.", interpretsEscapes));
  };
  args.group(note_);
  text(find_, "--find", "Exact text to find (required).");
  text(replace_, "--replace", "Replace the matched text.");
  text(insertAfter_, "--insert-after", "Insert text immediately after the match.");
  text(insertBefore_, "--insert-before", "Insert text immediately before the match.");
  args.flag(all_, "--all").help("Apply to all occurrences.");
  args.flag(ignoreCase_, "--ignore-case").help("Case-insensitive matching.");
  args.flag(word_, "--word").help("Match whole words only using Unicode-aware word boundaries.");
  args.group(date_);
  args.flag(force_, "--force")
      .help(
          "Bypass the attachment-removal safety check. Use after reading a rejection message to "
          "confirm the removal is intentional.");
}

std::vector<NoteEdit> EditCommand::edits() const {
  if (find_.empty()) throw TaviCLIError::usage("--find is required");
  std::vector<Action> given;
  std::string names;
  for (const Action& action : {Action{"--replace", replace_, &NoteEdit::replace},
                               Action{"--insert-after", insertAfter_, &NoteEdit::insertAfter},
                               Action{"--insert-before", insertBefore_, &NoteEdit::insertBefore}}) {
    if (action.values.empty()) continue;
    names += (given.empty() ? "" : ", ") + action.name;
    given.push_back(action);
  }
  if (given.empty())
    throw TaviCLIError::usage("--replace, --insert-after, or --insert-before is required");
  if (given.size() > 1) throw TaviCLIError::usage(names + " are mutually exclusive");

  const Action& action = given[0];
  if (find_.size() != action.values.size()) {
    throw TaviCLIError::usage("--find count (" + std::to_string(find_.size()) + ") must equal " +
                              action.name + " count (" + std::to_string(action.values.size()) +
                              ")");
  }
  std::vector<NoteEdit> edits;
  for (std::size_t i = 0; i < find_.size(); ++i) {
    NoteEdit& edit = edits.emplace_back(NoteEdit{.find = OutputFormatter::unescape(find_[i]),
                                                 .all = all_,
                                                 .ignoreCase = ignoreCase_,
                                                 .word = word_});
    edit.*action.member = OutputFormatter::unescape(action.values[i]);
  }
  return edits;
}

void EditCommand::run() try {
  NoteStore& store = openStore({.preserveModificationDate = date_.preserve});
  EditNoteOp::execute({.id = note_.id, .title = note_.title, .edits = edits()}, store, force_);
} catch (const NoteStoreError& error) {
  if (ignoreCase_ || !error.isStringNotFound()) throw;
  throw CommandFailure("string_not_found", error.message() + " (try --ignore-case)");
}

std::string_view EditCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Text arguments interpret escape sequences: \n (newline), \t (tab),
  \r (carriage return), \\ (literal backslash). Stdin is not unescaped.

SAFETY GATE (--force):
  Attachment removals are rejected by default unless they are
  deliberately confirmed. When the gate fires, the rejection message
  names the files that would be dropped; re-run with --force if the
  removal is intentional. Tag changes are not gated.

EXAMPLES:
  tavicli edit <id> --find "TODO" --replace "DONE"
  tavicli edit <id> --find "## Notes" --insert-after "\nNew line"
  tavicli edit <id> --find "## Notes" --insert-before "Intro paragraph\n\n"
  tavicli edit <id> --find "cat" --replace "dog" --all --word)";
}

}  // namespace tavi

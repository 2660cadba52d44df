#include "cli/commands/tags_command.h"

#include <utility>
#include <vector>

#include "cli/cli_error.h"
#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "domain/tag_parser.h"
#include "operations/tag_operations.h"

namespace tavi {
namespace {

constexpr std::string_view alternative = " (Alternative to positional.)";

RecordList<TagRecord> records(const std::vector<std::string>& names) {
  std::vector<TagRecord> rows;
  for (const std::string& name : names)
    rows.push_back({TagParser::writtenForm(name).value_or(name)});
  return recordList(std::move(rows));
}

/// The positional or, if it is absent, the option with the same meaning.
std::string required(const std::optional<std::string>& positional,
                     const std::optional<std::string>& option, const char* message) {
  if (!positional && !option) throw TaviCLIError::usage(message);
  return positional ? *positional : *option;
}

}  // namespace

CommandConfiguration TagsCommand::configuration() {
  using ArgumentParser::commandType;
  return {.commandName = "tags",
          .abstract = "Manage tags.",
          .subcommands = {commandType<ListTagsCommand>(), commandType<AddTagsCommand>(),
                          commandType<RemoveTagsCommand>(), commandType<RenameTagCommand>(),
                          commandType<DeleteTagCommand>()},
          .defaultSubcommand = commandType<ListTagsCommand>()};
}

CommandConfiguration ListTagsCommand::configuration() {
  return commandFor<ListTagsOp>("list");
}

void ListTagsCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.flag(count_, "--count").help("Print only the total number of tags.");
  args.group(options_);
}

void ListTagsCommand::run() {
  NoteStore& store = openStore();
  const auto names = ListTagsOp::execute({.id = note_.id, .title = note_.title}, store);
  RecordWriter writer(Session::current().output, options_.format);
  if (count_) return writer.writeCount(static_cast<std::int64_t>(names.size()));
  const auto fields = OutputFormatter::resolveFields<TagRecord>(options_);
  writer.writeRows(*records(names), fields);
}

std::string_view ListTagsCommand::footer() const {
  return R"(OUTPUT:
  Default fields: tag
  Tags are sorted: #multi word#, #nested/child.

  Use --fields to select fields. Use --format to change output format.

EXAMPLES:
  tavicli tags list
  tavicli tags list <id>
  tavicli tags list --title "Mars" --format json
  tavicli tags list --count)";
}

AddTagsCommand::AddTagsCommand()
    : NoteListCommand({.id = "Note ID, followed by tags to add.",
                       .names = AddTagsOp::Fields::tags,
                       .title = AddTagsOp::Fields::title.description,
                       .candidates = [](auto&, auto& line) { return completions::tags(line); }}) {}

CommandConfiguration AddTagsCommand::configuration() {
  return commandFor<AddTagsOp>("add");
}

void AddTagsCommand::run() {
  execute<AddTagsOp>(&AddTagsInput::tags);
}

std::string_view AddTagsCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

NOTE:
  Tags are inserted at the position configured in Tavi settings
  (top or bottom of the note). Does not change the note's modification date.

EXAMPLES:
  tavicli tags add <id> work "work/meetings"
  tavicli tags add --title "Mars" favorite)";
}

RemoveTagsCommand::RemoveTagsCommand()
    : NoteListCommand({.id = "Note ID, followed by tags to remove.",
                       .names = RemoveTagsOp::Fields::tags,
                       .title = RemoveTagsOp::Fields::title.description,
                       .candidates = completions::tagsOf}) {}

CommandConfiguration RemoveTagsCommand::configuration() {
  return commandFor<RemoveTagsOp>("remove");
}

void RemoveTagsCommand::run() {
  execute<RemoveTagsOp>(&RemoveTagsInput::tags);
}

std::string_view RemoveTagsCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr. Does not change the note's modification date.

EXAMPLES:
  tavicli tags remove <id> draft wip
  tavicli tags remove --title "Mars" draft)";
}

CommandConfiguration RenameTagCommand::configuration() {
  return commandFor<RenameTagOp>("rename");
}

void RenameTagCommand::declare(ArgumentSet& args) {
  using Fields = RenameTagOp::Fields;
  // The new name is completed too: it often extends an existing one.
  const auto name = [](ArgumentParser::Declaration argument, std::string_view text) {
    argument.help(text).completes(completions::tags);
  };
  name(args.argument(old_, Fields::oldName.name), Fields::oldName.description);
  name(args.option(from_, "--from"), help(Fields::oldName.description, alternative));
  name(args.argument(new_, Fields::newName.name), Fields::newName.description);
  name(args.option(to_, "--to"), help(Fields::newName.description, alternative));
  args.flag(force_, "--force").help(Fields::force.description);
}

void RenameTagCommand::run() {
  NoteStore& store = openStore();
  const std::string oldName = required(old_, from_, "Old tag name is required");
  const std::string newName = required(new_, to_, "New tag name is required");
  RenameTagOp::execute({.oldName = oldName, .newName = newName, .force = force_}, store);
}

std::string_view RenameTagCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr. If the old tag does not exist, it is treated as a silent
  no-op. If the new tag already exists, the command refuses (use
  --force to merge). Does not change any note's modification date.

EXAMPLES:
  tavicli tags rename work job
  tavicli tags rename --from draft --to published
  tavicli tags rename old-tag existing-tag --force)";
}

CommandConfiguration DeleteTagCommand::configuration() {
  return commandFor<DeleteTagOp>("delete");
}

void DeleteTagCommand::declare(ArgumentSet& args) {
  const FieldDoc& tag = DeleteTagOp::Fields::tag;
  args.argument(tag_, tag.name).help(tag.description).completes(completions::tags);
  args.option(name_, "--name")
      .help(help(tag.description, alternative))
      .completes(completions::tags);
}

void DeleteTagCommand::run() {
  NoteStore& store = openStore();
  DeleteTagOp::execute({.tag = required(tag_, name_, "Tag name is required")}, store);
}

std::string_view DeleteTagCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr. If the tag does not exist, the command silently succeeds
  (no-op). Does not change any note's modification date.

EXAMPLES:
  tavicli tags delete draft
  tavicli tags delete --name "work/old")";
}

}  // namespace tavi

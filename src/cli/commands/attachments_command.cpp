#include "cli/commands/attachments_command.h"

#include <utility>

#include "cli/cli_error.h"
#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "operations/attachment_operations.h"

namespace tavi {
namespace {

const ArgumentParser::Names filenameNames() {
  return {"-f", "--filename"};
}

/// Completes to the attachments of the note on the command line.
completions::CandidateFunction attachmentsOf(const NoteOptions& note) {
  return [&note](auto&) { return completions::attachmentsOf({note.id, note.title}); };
}

/// The option is declared as optional, so that this check, with its own message, replaces the
/// parser's and runs after the store is opened.
const std::string& required(const std::optional<std::string>& filename) {
  if (!filename) throw TaviCLIError::usage("--filename is required");
  return *filename;
}

}  // namespace

CommandConfiguration AttachmentsCommand::configuration() {
  using ArgumentParser::commandType;
  return {
      .commandName = "attachments",
      .abstract = "Manage attachments on a note.",
      .subcommands = {commandType<ListAttachmentsCommand>(), commandType<AddAttachmentCommand>(),
                      commandType<DeleteAttachmentCommand>(), commandType<SaveAttachmentCommand>()},
      .defaultSubcommand = commandType<ListAttachmentsCommand>()};
}

CommandConfiguration ListAttachmentsCommand::configuration() {
  return commandFor<ListAttachmentsOp>("list");
}

void ListAttachmentsCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.group(options_);
}

void ListAttachmentsCommand::run() {
  NoteStore& store = openStore();
  auto attachments = ListAttachmentsOp::execute({.id = note_.id, .title = note_.title}, store);
  const auto fields = OutputFormatter::resolveFields<AttachmentInfo>(options_);
  RecordWriter(Session::current().output, options_.format)
      .writeRows(*recordList(std::move(attachments)), fields);
}

std::string_view ListAttachmentsCommand::footer() const {
  return R"(OUTPUT:
  Default fields: filename, size
  size is in bytes. Empty output means no attachments.

  Use --fields to select fields. Use --format to change output format.

EXAMPLES:
  tavicli attachments list <id>
  tavicli attachments list --title "Mars" --format json)";
}

CommandConfiguration AddAttachmentCommand::configuration() {
  auto configuration = commandFor<AddAttachmentOp>("add");
  configuration.abstract += " Data is read from stdin.";
  return configuration;
}

void AddAttachmentCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.option(filename_, filenameNames())
      .help("Filename for the attachment (required).")
      .completes(ArgumentParser::CompletionFiles{});
  args.group(date_);
}

void AddAttachmentCommand::run() {
  NoteStore& store = openStore({.preserveModificationDate = date_.preserve});
  const std::string& filename = required(filename_);
  auto data = Session::current().readStdinData();
  if (!data || data->empty()) {
    throw TaviCLIError::usage(
        "Pipe data via stdin: cat <file> | tavicli attachments add <id> --filename <name>");
  }
  AddAttachmentOp::execute({.id = note_.id,
                            .title = note_.title,
                            .filename = filename,
                            .data = {.bytes = *std::move(data)}},
                           store);
}

std::string_view AddAttachmentCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

EXAMPLES:
  cat photo.jpg | tavicli attachments add <id> --filename photo.jpg
  tavicli attachments add <id> --filename photo.jpg < photo.jpg)";
}

CommandConfiguration DeleteAttachmentCommand::configuration() {
  return commandFor<DeleteAttachmentOp>("delete");
}

void DeleteAttachmentCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.option(filename_, filenameNames())
      .help("Filename of the attachment to delete (required).")
      .completes(attachmentsOf(note_));
  args.group(date_);
}

void DeleteAttachmentCommand::run() {
  NoteStore& store = openStore({.preserveModificationDate = date_.preserve});
  DeleteAttachmentOp::execute(
      {.id = note_.id, .title = note_.title, .filename = required(filename_)}, store);
}

std::string_view DeleteAttachmentCommand::footer() const {
  return R"(OUTPUT:
  Nothing on success. Exit code is the success signal; errors go to
  stderr.

EXAMPLES:
  tavicli attachments delete <id> --filename photo.jpg)";
}

CommandConfiguration SaveAttachmentCommand::configuration() {
  return commandFor<ReadAttachmentOp>("save");
}

void SaveAttachmentCommand::declare(ArgumentSet& args) {
  args.group(note_);
  args.option(filename_, filenameNames())
      .help("Filename of the attachment to save (required).")
      .completes(attachmentsOf(note_));
  args.group(options_);
}

void SaveAttachmentCommand::run() {
  NoteStore& store = openStore();
  const std::string& filename = required(filename_);
  Session& session = Session::current();
  if (options_.format == OutputFormat::tsv && session.outputIsTerminal()) {
    throw TaviCLIError::usage(
        "Redirect stdout to a file: tavicli attachments save <id> --filename <name> > <file>");
  }
  const std::string bytes = ReadAttachmentOp::execute(
      {.id = note_.id, .title = note_.title, .filename = filename}, store);
  RecordWriter(session.output, options_.format).writeAttachment(filename, bytes);
}

std::string_view SaveAttachmentCommand::footer() const {
  return R"(OUTPUT:
  Default (--format tsv): raw attachment bytes written to stdout
  (requires redirection — refused on a TTY).
  --format csv: `filename,size,base64\n"...",N,"..."\n` (one header
  row plus one data row, base64-encoded).
  --format json: `{"filename":"...","size":N,"base64":"..."}`.
  Both csv and json pass through on a TTY.

EXAMPLES:
  tavicli attachments save <id> --filename photo.jpg > photo.jpg
  tavicli attachments save <id> --filename photo.jpg --format json)";
}

}  // namespace tavi

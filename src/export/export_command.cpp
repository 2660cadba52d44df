#include "export/export_command.h"

#include <fmt/format.h>

#include "cli/single_command.h"
#include "cli/version.h"
#include "export/exporter.h"
#include "export/git.h"
#include "store/make_store.h"

namespace tavi::exporting {
namespace {

constexpr int interrupted = 130;  // a shell's exit code for Ctrl-C: 128 + SIGINT

}  // namespace

ArgumentParser::CommandConfiguration ExportCommand::configuration() {
  return {
      .commandName = "tavi-export",
      .abstract = "Write Tavi's notes into a folder of Markdown files.",
      .discussion =
          "Each note becomes a file named after its title: front matter with its id, dates, "
          "place, tags, pins and attachments, and below it the text as it is. A note with "
          "attachments has a folder of its own, in which its links lead to them. Archived notes "
          "lie in Archive/, those of the trash in Trash/. Of a locked note there is the front "
          "matter alone.\n\n"
          "Run again, it writes only what has changed, and moves files that the notes have no "
          "more to .tavi-export/removed/. It never writes over a file that it did not write or "
          "that has been changed since: those are named, and the exit code is 1. tavi-import "
          "brings an export back as the same notes.",
      .version = versionString()};
}

void ExportCommand::declare(ArgumentParser::ArgumentSet& args) {
  args.argument(folder_, "folder")
      .help("The folder; it is made where there is none.")
      .completes(ArgumentParser::CompletionDirectories{})
      .required();
  args.flag(git_, {"--git"})
      .help("Commit the folder with git after the export; without a repository one is made.");
}

void ExportCommand::run() {
  const auto store = makeStore();
  const ExportReport report = Exporter(folder_).run(*store);
  printOutput(report.text());
  if (report.isInterrupted) throw ArgumentParser::ExitCode(interrupted);
  if (git_) {
    commitFolder(folder_, fmt::format("Export {} notes\n\n{} written, {} moved away.", report.notes,
                                      report.written, report.movedAway));
  }
  if (!report.leftAsTheyAre.empty() || !report.missing.empty())
    throw ArgumentParser::ExitCode(ArgumentParser::ExitCode::failure);
}

}  // namespace tavi::exporting

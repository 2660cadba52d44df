#include "import/import_command.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>

#include "cli/single_command.h"
#include "cli/version.h"
#include "domain/tag_parser.h"
#include "import/importer.h"
#include "platform/system/directories.h"
#include "store/make_store.h"
#include "store/preferences.h"
#include "store/refresh_bridge.h"
#include "vault/encodings.h"
#include "vault/names.h"

namespace tavi::import {
namespace {

constexpr int interrupted = 130;  // a shell's exit code for Ctrl-C: 128 + SIGINT

std::vector<vault::Folder> readFolders(const std::vector<std::string>& paths) {
  std::vector<vault::Folder> folders;
  for (const std::string& path : paths) {
    try {
      folders.push_back(vault::readFolder(path));
    } catch (const std::system_error& error) {
      throw std::runtime_error(
          fmt::format("Cannot read {}: {}", vault::shown(path), error.code().message()));
    }
  }
  return folders;
}

/// The store; null for a dry run without a database, which must not create one.
std::unique_ptr<ImportingStore> openStore(bool isDryRun) {
  const auto folder = platform::system::applicationDataDirectory();
  if (isDryRun && folder && !std::filesystem::exists(*folder / "tavi.sqlite")) return nullptr;
  return makeImportingStore();
}

void printPlanned(const std::string& path, const ImportedNote& note) {
  const auto title = note.text.substr(0, note.text.find_first_of("\r\n"));
  std::string line = fmt::format("{} -> {}", vault::shown(path), vault::shown(title));
  for (const ImportedNote::File& file : note.files)
    line += fmt::format(" + {}", vault::shown(file.filename));
  printOutput(line + "\n");
}

}  // namespace

ArgumentParser::CommandConfiguration ImportCommand::configuration() {
  return {
      .commandName = "tavi-import",
      .abstract = "Bring folders of Markdown files into Tavi's notes.",
      .discussion =
          "Each Markdown file becomes a note. Its title is its first heading of level 1, what "
          "its front matter says, or its file's name; its tags are its hashtags, those of its "
          "front matter, and its folder. Images and files of the folder that it links come "
          "along as attachments, and links to other files of the folder become wiki links. "
          "Dates are kept. Front matter that says more than title, tags and dates stays in the "
          "text. A file that tavi-export wrote becomes the very note that it was.\n\n"
          "Nothing in the folders is changed, nor any note that is there: the same import again "
          "adds only what is new, and says which files are not as their notes any more. Hidden "
          "files and symbolic links are left out.\n\n"
          "The exit code is 0, or 1 where files had to be left out that should have come in.",
      .version = versionString()};
}

void ImportCommand::declare(ArgumentParser::ArgumentSet& args) {
  args.argument(folders_, "folder")
      .help("Folders to bring in, with all below them; or single Markdown files.")
      .completes(ArgumentParser::CompletionDirectories{})
      .required();
  args.flag(dryRun_, {"-n", "--dry-run"}).help("Show what would be done, and change nothing.");
  args.option(encoding_, {"--encoding"})
      .help(
          "What files are that are not UTF-8, such as windows-1252. Without it they are left out.");
  args.option(tags_, {"--tag"}).help("A tag that every new note gets; may be given again.");
  args.flag(noFolderTags_, {"--no-folder-tags"}).help("Make no tags of folders' names.");
}

void ImportCommand::validate() {
  using ArgumentParser::ValidationError;
  if (folders_.empty()) throw ValidationError("Missing expected argument '<folder>'");
  if (!encoding_.empty() && !vault::isEncoding(encoding_))
    throw ValidationError(fmt::format("There is no encoding \"{}\"", vault::shown(encoding_)));
  for (std::string& tag : tags_) {
    const std::string name = TagParser::canonicalName(tag);
    if (name.empty())
      throw ValidationError(fmt::format("No tag can be named \"{}\"", vault::shown(tag)));
    tag = name;
  }
}

void ImportCommand::run() {
  const std::vector<vault::Folder> folders = readFolders(folders_);
  std::unique_ptr<ImportingStore> store = openStore(dryRun_);
  Importer importer({.encoding = encoding_,
                     .tags = tags_,
                     .folderTags = !noFolderTags_,
                     .tagsAtBottom = TaviPreferences::tagsAtBottom()},
                    store.get(), dryRun_,
                    [this](const std::string& path, const ImportedNote& note) {
                      if (dryRun_) printPlanned(path, note);
                    });
  const auto finish = [&] {
    if (importer.report().notes > 0 && !dryRun_) TaviCLIBridge::requestAppRefresh();
    printOutput(importer.report().text());
  };
  try {
    importer.run(folders);
  } catch (...) {
    finish();
    throw;
  }
  finish();
  if (importer.report().isInterrupted) throw ArgumentParser::ExitCode(interrupted);
  if (!importer.report().leftOut.empty())
    throw ArgumentParser::ExitCode(ArgumentParser::ExitCode::failure);
}

}  // namespace tavi::import

#include "export/exporter.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "domain/store_errors.h"
#include "export/note_file.h"
#include "platform/system/directories.h"
#include "platform/system/hashing.h"
#include "vault/files.h"
#include "vault/interruption.h"
#include "vault/names.h"
#include "vault/progress.h"

namespace tavi::exporting {
namespace {

namespace fs = std::filesystem;
using vault::FileFault;
using vault::Interruption;

constexpr std::uint64_t anySize = std::uint64_t{1} << 40;  // bytes

/// Stands for the digest of something that is not a regular file, which an export never wrote.
const std::string notAFile = "-";

std::string digestOf(std::string_view bytes) {
  const auto digest = platform::system::sha256(bytes);
  return platform::system::hexadecimal(
      {reinterpret_cast<const char*>(digest.data()), digest.size()});
}

fs::path temporaryFolder(const fs::path& folder) {
  return bookkeepingFolder(folder) / "new";
}

/// "2026-01-31 080509": a folder name for the files that this run moves away.
std::string timeStamp() {
  std::string text = formatISO8601(
      {std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count()});
  std::erase(text, ':');
  std::replace(text.begin(), text.end(), 'T', ' ');
  std::erase(text, 'Z');
  return text;
}

std::string counted(std::size_t count, const char* one) {
  return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

void list(std::string& text, const char* heading, const std::vector<vault::LeftOut>& files) {
  if (files.empty()) return;
  text += fmt::format("{}:\n", heading);
  for (const auto& [path, why] : files)
    text += fmt::format("  {}: {}\n", vault::shown(path), vault::shown(why));
}

}  // namespace

std::string ExportReport::text() const {
  if (isInterrupted) return "Interrupted: nothing was changed.\n";
  std::string text =
      fmt::format("Exported {} with {}: {} written, {} moved away.\n", counted(notes, "note"),
                  counted(attachments, "attachment"), counted(written, "file"), movedAway);
  list(text, "Left as they are", leftAsTheyAre);
  list(text, "Attachments that cannot be read", missing);
  return text;
}

Exporter::Exporter(fs::path folder) : folder_(std::move(folder)) {
  if (!fs::is_directory(folder_)) platform::system::makePrivateFolder(folder_);
  folder_ = fs::canonical(folder_);
  const auto data = platform::system::applicationDataDirectory();
  if (data && fs::exists(*data) && fs::equivalent(folder_, *data))
    throw std::runtime_error("That is the folder of the database itself");
  const fs::path own = bookkeepingFolder(folder_);
  platform::system::makePrivateFolder(own);
  lock_ = platform::system::FileDescriptor(::open(own.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!lock_ || ::flock(lock_.get(), LOCK_EX | LOCK_NB) != 0)
    throw std::runtime_error("Another export into this folder is running");
  vault::writeFile(own / ".gitignore", "*\n");
  before_ = Manifest::read(folder_);
  removed_ = own / "removed" / timeStamp();
}

ExportReport Exporter::run(NoteStore& store) {
  const Interruption interruption;
  fs::remove_all(temporaryFolder(folder_));  // left by a killed run
  fs::create_directory(temporaryFolder(folder_));
  plan(store);
  {
    vault::Progress progress(report_.notes, "notes");
    store.listNotesWithContent({})->forEach([&](const Note& note) {
      report_.isInterrupted = Interruption::isRequested();
      if (report_.isInterrupted) return;
      exportNote(note, store);
      progress.step();
    });
  }
  if (!report_.isInterrupted) publish();
  fs::remove_all(temporaryFolder(folder_));
  return report_;
}

void Exporter::plan(NoteStore& store) {
  std::vector<NoteMetadata> notes;
  store.listNotes({})->forEach([&](const NoteMetadata& note) { notes.push_back(note); });
  report_.notes = notes.size();
  std::unordered_map<std::string, std::string> paths;
  for (const auto& [path, entry] : before_.files)
    if (entry.isNote) paths.emplace(entry.note, path);
  layout_ = std::make_unique<Layout>(
      notes, paths, [this](const std::string& path) -> std::optional<std::string> {
        if (before_.files.contains(path)) return before_.files.at(path).note;
        if (!fs::exists(fs::symlink_status(folder_ / path))) return std::nullopt;
        try {
          return noteIDOf(vault::contentsOf(folder_ / path, anySize));
        } catch (const FileFault&) {
          return "";
        }
      });
}

void Exporter::exportNote(const Note& note, NoteStore& store) {
  const std::string& id = note.metadata.id;
  const std::string& path = layout_->pathOf(id);
  place(path, noteFile(note), {.note = id, .isNote = true});
  for (const std::string& name : note.metadata.attachments) {
    const std::string target = Layout::beside(path, name);
    try {
      place(target, store.readAttachment(id, name), {.note = id});
      ++report_.attachments;
    } catch (const NoteStoreError& error) {
      report_.missing.push_back({target, error.message()});
      if (before_.files.contains(target)) now_.files[target] = before_.files.at(target);
    }
  }
}

/// The digest of the file at a path; empty if there is none.
std::string Exporter::digestAt(const std::string& path) const {
  const fs::file_status status = fs::symlink_status(folder_ / path);
  if (!fs::exists(status)) return {};
  if (!fs::is_regular_file(status)) return notAFile;
  return digestOf(vault::contentsOf(folder_ / path, anySize));
}

/// Writes the file under a temporary name, unless the file at `path` is up to date or is not ours.
void Exporter::place(const std::string& path, const std::string& bytes, Manifest::Entry entry) {
  entry.digest = digestOf(bytes);
  const std::string found = digestAt(path);
  const auto known = before_.files.find(path);
  const bool isOurs =
      found.empty() || (known != before_.files.end() && known->second.isOurs(found));
  if (found != entry.digest && !isOurs) {
    report_.leftAsTheyAre.push_back({path, known != before_.files.end()
                                               ? "it has been changed since the last export"
                                               : "another program wrote it"});
    if (known != before_.files.end()) now_.files[path] = known->second;
    return;
  }
  if (found != entry.digest) {
    entry.digestBefore = found;
    const fs::path temporary = temporaryFolder(folder_) / std::to_string(written_.size());
    vault::writeFile(temporary, bytes);
    written_.emplace(path, temporary);
  }
  now_.files[path] = std::move(entry);
}

/// Renames the written files into place. If this is cut short at any point, the manifest on disk
/// still identifies every file that exports wrote.
void Exporter::publish() {
  vault::syncFolder(folder_);
  Manifest both = before_;
  for (const auto& [path, entry] : now_.files) both.files[path] = entry;
  both.write(folder_);
  for (const auto& [path, temporary] : written_) {
    fs::create_directories((folder_ / path).parent_path());
    fs::rename(temporary, folder_ / path);
    now_.files.at(path).digestBefore.clear();
    ++report_.written;
  }
  retire();
  now_.write(folder_);
}

/// Moves away the files that the last export wrote and that no note needs any more.
void Exporter::retire() {
  for (const auto& [path, entry] : before_.files) {
    if (now_.files.contains(path)) continue;
    const std::string found = digestAt(path);
    if (found.empty()) continue;
    if (entry.isOurs(found)) {
      moveAway(path);
    } else {
      report_.leftAsTheyAre.push_back(
          {path,
           "it has been changed since the last export, which had it for a note that is gone "
           "or named otherwise now"});
    }
  }
}

void Exporter::moveAway(const std::string& path) {
  const fs::path target = removed_ / path;
  fs::create_directories(target.parent_path());
  fs::rename(folder_ / path, target);
  ++report_.movedAway;
  std::error_code notEmpty;
  const fs::path parent = (folder_ / path).parent_path();
  if (parent != folder_) fs::remove(parent, notEmpty);
}

}  // namespace tavi::exporting

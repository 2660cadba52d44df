#include "import/importer.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <filesystem>

#include "platform/markdown/ast.h"
#include "vault/files.h"
#include "vault/interruption.h"
#include "vault/names.h"
#include "vault/progress.h"

namespace tavi::import {
namespace {

namespace fs = std::filesystem;
using vault::FileFault;
using vault::FoundFile;
using vault::Interruption;
using zephyrdown::ZDKAST;

constexpr std::uint64_t largestFile = std::uint64_t{1} << 30;  // bytes

// Each save costs its fsyncs, whatever its size; unsaved notes take memory.
constexpr std::size_t notesPerSave = 250;
constexpr std::size_t bytesPerSave = std::size_t{32} << 20;

std::string withTag(std::string text, const std::string& tag, bool atBottom) {
  ZDKAST tree = ZDKAST::fromMarkdown(std::move(text));
  tree.applyTextOperationResults(tree.addHashtag(tag, atBottom));
  return tree.markdown();
}

/// The path of the file `name` in the same folder as `path`.
std::string sibling(const std::string& path, const std::string& name) {
  return (fs::path(path).parent_path() / name).string();
}

}  // namespace

Importer::Importer(ImportOptions options, ImportingStore* store, bool isDryRun, Planned planned)
    : options_(std::move(options)), store_(store), planned_(std::move(planned)), known_(store) {
  report_.isDryRun = isDryRun;
}

void Importer::leaveOut(const std::string& path, const std::string& why) {
  report_.leftOut.push_back({path, why});
}

void Importer::run(const std::vector<vault::Folder>& folders) {
  const Interruption interruption;
  for (const vault::Folder& folder : folders)
    for (const FoundFile& file : folder.notes) known_.reserve(vault::uuidOf(file.path.string()));
  for (const vault::Folder& folder : folders) {
    readAll(folder);
    vault::Progress progress(sources_.size(), "files");
    for (const FoundFile* file : sources_) {
      report_.isInterrupted = Interruption::isRequested();
      if (report_.isInterrupted) break;
      import(*file);
      progress.step();
    }
    save();
    if (report_.isInterrupted) return;
    for (const FoundFile& other : folder.others)
      if (!attachments_.contains(other.relative)) report_.unlinked.push_back({other.relative, ""});
  }
}

/// Reads all files before any is imported, since links may refer to any of them.
void Importer::readAll(const vault::Folder& folder) {
  folder_ = &folder;
  index_ = std::make_unique<VaultIndex>(folder);
  sources_.clear();
  attachments_.clear();
  report_.hidden += folder.hidden;
  for (const vault::LeftOut& file : folder.leftOut) leaveOut(file.path, file.why);
  std::vector<std::pair<const FoundFile*, std::vector<std::string>>> aliases;
  for (const FoundFile& file : folder.notes) {
    if (Interruption::isRequested()) break;
    try {
      const SourceNote source = readSourceNote(file, options_.encoding);
      sources_.push_back(&file);
      index_->addNote(file, source.title);
      for (const std::string& alias : source.aliases) index_->addAlias(alias, source.title);
      if (!source.exported) continue;
      for (const ImportedNote::File& attachment : source.exported->files)
        attachments_.insert(sibling(file.relative, attachment.filename));
    } catch (const FileFault& fault) {
      leaveOut(file.relative, fault.what());
    }
  }
  // An attachment of an exported note may be a Markdown file.
  std::erase_if(sources_,
                [&](const FoundFile* file) { return attachments_.contains(file->relative); });
  std::erase_if(report_.leftOut,
                [&](const vault::LeftOut& file) { return attachments_.contains(file.path); });
}

void Importer::import(const FoundFile& file) {
  try {
    SourceNote source = readSourceNote(file, options_.encoding);
    for (const std::string& remark : source.remarks)
      report_.remarks.push_back({file.relative, remark});
    if (source.exported) {
      importExported(file, *std::move(source.exported));
    } else {
      importForeign(file, source);
    }
  } catch (const FileFault& fault) {
    leaveOut(file.relative, fault.what());
  }
}

void Importer::importExported(const FoundFile& file, ImportedNote note) {
  if (isThere(file.relative, note, true)) return;
  for (ImportedNote::File& attachment : note.files) {
    const std::string path = sibling(file.relative, attachment.filename);
    try {
      if (attachment.filename.find('/') != std::string::npos)
        throw FileFault("its name has a slash");
      attachment.bytes = vault::contentsOf(folder_->root / path, largestFile);
    } catch (const FileFault& fault) {
      leaveOut(path, fault.what());
      attachment.filename.clear();
    }
  }
  std::erase_if(note.files, [](const ImportedNote::File& each) { return each.filename.empty(); });
  add(file.relative, note);
}

RelinkedText Importer::relinkedAndTagged(const FoundFile& file, const SourceNote& source,
                                         const std::set<std::string>& unusable) const {
  RelinkedText result = relinked(source.text, file, *index_, unusable);
  std::vector<std::string> tags = source.tags;
  tags.insert(tags.end(), options_.tags.begin(), options_.tags.end());
  const std::string folder = fs::path(file.relative).parent_path().string();
  if (options_.folderTags && !folder.empty())
    if (std::string tag = tagNameOf(folder); !tag.empty()) tags.push_back(std::move(tag));
  const auto present = ZDKAST::fromMarkdown(result.text).textSummary().tags;
  for (const std::string& tag : tags)
    if (std::find(present.begin(), present.end(), tag) == present.end())
      result.text = withTag(std::move(result.text), tag, options_.tagsAtBottom);
  return result;
}

void Importer::importForeign(const FoundFile& file, const SourceNote& source) {
  ImportedNote note{.id = vault::uuidOf(file.path.string()),
                    .created = source.created,
                    .modified = source.modified};
  std::set<std::string> unusable;
  while (true) {
    RelinkedText text = relinkedAndTagged(file, source, unusable);
    note.text = std::move(text.text);
    note.files.clear();
    for (const LinkedFile& linked : text.files)
      note.files.push_back({.filename = linked.filename, .bytes = {}});
    const bool wasThere = isThere(file.relative, note, false);
    if (!wasThere && !readFiles(note, text.files, unusable)) continue;
    for (const LinkedFile& linked : text.files) attachments_.insert(linked.file->relative);
    if (wasThere) return;
    for (const std::string& missing : text.missing)
      report_.remarks.push_back(
          {file.relative, "it links " + missing + ", which is not part of this import"});
    return add(file.relative, note);
  }
}

/// Reads the note's attachments. If one cannot be read, adds it to `unusable` and returns false.
bool Importer::readFiles(ImportedNote& note, const std::vector<LinkedFile>& files,
                         std::set<std::string>& unusable) {
  for (std::size_t i = 0; i < files.size(); ++i) {
    try {
      note.files[i].bytes = vault::contentsOf(files[i].file->path, largestFile);
    } catch (const FileFault& fault) {
      if (!attachments_.contains(files[i].file->relative))
        leaveOut(files[i].file->relative, fault.what());
      unusable.insert(files[i].file->relative);
      attachments_.insert(files[i].file->relative);
      return false;
    }
  }
  return true;
}

/// Whether the file's note exists already, so that there is nothing to import. Adds to the report.
bool Importer::isThere(const std::string& path, ImportedNote& note, bool isExported) {
  if (ids_.contains(note.id)) {
    leaveOut(path, "another file of this import has its id");
    return true;
  }
  if (known_.find(note.id) != nullptr) {
    ids_.insert(note.id);
    const auto differences = known_.differences(note, isExported);
    if (differences.empty()) {
      ++report_.unchanged;
    } else {
      report_.differing.push_back(
          {path, fmt::format("{} (note {})", fmt::join(differences, ", "), note.id)});
    }
    return true;
  }
  if (isExported || known_.take(note).empty()) return false;
  ++report_.unchanged;  // the folder was moved after an earlier import
  return true;
}

void Importer::add(const std::string& path, const ImportedNote& note) {
  ids_.insert(note.id);
  planned_(path, note);
  if (report_.isDryRun) {
    ++report_.notes;
    report_.files += note.files.size();
    return;
  }
  if (!store_->importNote(note)) return leaveOut(path, "its note has been deleted for good");
  ++heldNotes_;
  heldFiles_ += note.files.size();
  heldBytes_ += note.text.size();
  if (heldNotes_ >= notesPerSave || heldBytes_ >= bytesPerSave) save();
}

void Importer::save() {
  if (heldNotes_ == 0) return;
  store_->saveImported();
  report_.notes += heldNotes_;
  report_.files += heldFiles_;
  heldNotes_ = heldFiles_ = heldBytes_ = 0;
}

}  // namespace tavi::import

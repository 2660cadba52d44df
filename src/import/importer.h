#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "import/known_notes.h"
#include "import/links.h"
#include "import/report.h"
#include "import/source_note.h"

namespace tavi::import {

/// The user's choices for an import.
struct ImportOptions {
  std::string encoding;           ///< for files that are not UTF-8; empty: leave them out
  std::vector<std::string> tags;  ///< canonical names of tags for every new note
  bool folderTags = true;         ///< tag a file in the folder work/draft with "work/draft"
  bool tagsAtBottom = true;       ///< add tags at the bottom of the text, not at the top
};

/// Imports folders into a store. A file becomes a note whose id is derived from the file's path, so
/// that repeating an import finds it again; a file that tavi-export wrote becomes the note that it
/// was. Neither the folders nor existing notes are changed.
class Importer {
 public:
  /// Called for each new note; `path` is that of its file.
  using Planned = std::function<void(const std::string& path, const ImportedNote& note)>;
  /// `store` must outlive the importer; it may be null in a dry run and then counts as empty.
  Importer(ImportOptions options, ImportingStore* store, bool isDryRun, Planned planned);

  /// Throws what the store throws; `report` then covers what was done before. After a signal (see
  /// vault::Interruption) it finishes the current file, saves and returns.
  void run(const std::vector<vault::Folder>& folders);

  const Report& report() const { return report_; }

 private:
  void readAll(const vault::Folder& folder);
  void import(const vault::FoundFile& file);
  void importExported(const vault::FoundFile& file, ImportedNote note);
  void importForeign(const vault::FoundFile& file, const SourceNote& source);
  RelinkedText relinkedAndTagged(const vault::FoundFile& file, const SourceNote& source,
                                 const std::set<std::string>& unusable) const;
  bool readFiles(ImportedNote& note, const std::vector<LinkedFile>& files,
                 std::set<std::string>& unusable);
  bool isThere(const std::string& path, ImportedNote& note, bool isExported);
  void add(const std::string& path, const ImportedNote& note);
  void save();
  void leaveOut(const std::string& path, const std::string& why);

  ImportOptions options_;
  ImportingStore* store_;
  Planned planned_;
  KnownNotes known_;
  Report report_;

  // State of the current folder:
  const vault::Folder* folder_ = nullptr;
  std::unique_ptr<VaultIndex> index_;
  std::vector<const vault::FoundFile*> sources_;
  std::set<std::string> attachments_;  ///< paths of files that are attachments of a note

  std::set<std::string> ids_;  ///< of the notes of this run
  std::size_t heldNotes_ = 0, heldFiles_ = 0, heldBytes_ = 0;
};

}  // namespace tavi::import

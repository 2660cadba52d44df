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

struct ImportOptions {
  std::string encoding;           ///< of files that are not UTF-8; empty: they are left out
  std::vector<std::string> tags;  ///< canonical names that every new note gets
  bool folderTags = true;         ///< "work/draft" for a file in that folder
  bool tagsAtBottom = true;       ///< of a note's text, else at the top
};

/// Brings folders into a store. A file becomes a note whose id follows from the file's path, so
/// that the same import again finds it; a file that tavi-export wrote becomes the note that it was.
/// Nothing in the folders is changed, and no note that is there.
class Importer {
 public:
  /// `store`: null for one that is empty and stays so. `planned` is called with each new note and
  /// its path.
  using Planned = std::function<void(const std::string& path, const ImportedNote& note)>;
  Importer(ImportOptions options, ImportingStore* store, bool isDryRun, Planned planned);

  /// Throws what the store throws; `report` says what was done up to there. Ends early, with what
  /// was begun done, when an end is asked for (vault::Interruption).
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

  // Of the folder at hand:
  const vault::Folder* folder_ = nullptr;
  std::unique_ptr<VaultIndex> index_;
  std::vector<const vault::FoundFile*> sources_;
  std::set<std::string> attachments_;  ///< paths of files that came along with some note

  std::set<std::string> ids_;  ///< of the files of this run
  std::size_t heldNotes_ = 0, heldFiles_ = 0, heldBytes_ = 0;
};

}  // namespace tavi::import

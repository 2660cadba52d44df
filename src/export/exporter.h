#pragma once

#include <cstddef>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "domain/note_store.h"
#include "export/layout.h"
#include "export/manifest.h"
#include "platform/system/file_descriptor.h"
#include "vault/folder.h"

namespace tavi::exporting {

struct ExportReport {
  bool isInterrupted = false;  ///< then nothing was changed
  std::size_t notes = 0, attachments = 0;
  std::size_t written = 0;                    ///< files
  std::size_t movedAway = 0;                  ///< files that the notes have no more
  std::vector<vault::LeftOut> leftAsTheyAre;  ///< files that are not the export's to write
  std::vector<vault::LeftOut> missing;        ///< attachments whose bytes cannot be read

  std::string text() const;
};

/// Makes a folder hold what a store holds. A file is written only where it is not so already, and
/// only where the last export wrote what stands there; new files come under their names when all
/// are on the disk. Files that the notes have no more go to `.tavi-export/removed/`.
class Exporter {
 public:
  /// Makes the folder where there is none. Throws std::runtime_error, also when another export
  /// into the folder is running.
  explicit Exporter(std::filesystem::path folder);

  ExportReport run(NoteStore& store);

 private:
  void plan(NoteStore& store);
  void exportNote(const Note& note, NoteStore& store);
  void place(const std::string& path, const std::string& bytes, Manifest::Entry entry);
  std::string digestAt(const std::string& path) const;
  void publish();
  void retire();
  void moveAway(const std::string& path);

  std::filesystem::path folder_;
  platform::system::FileDescriptor lock_;
  Manifest before_, now_;
  std::unique_ptr<Layout> layout_;
  std::map<std::string, std::filesystem::path> written_;  ///< temporary files, by their last paths
  std::filesystem::path removed_;                         ///< where this run moves files to
  ExportReport report_;
};

}  // namespace tavi::exporting

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

/// The result of an export, for the user.
struct ExportReport {
  bool isInterrupted = false;  ///< then the export changed nothing
  std::size_t notes = 0, attachments = 0;
  std::size_t written = 0;                    ///< files written
  std::size_t movedAway = 0;                  ///< files moved away, since no note needs them
  std::vector<vault::LeftOut> leftAsTheyAre;  ///< files not overwritten, since others wrote them
  std::vector<vault::LeftOut> missing;        ///< attachments that cannot be read

  /// The report in words, several lines.
  std::string text() const;
};

/// Updates a folder to the contents of a store. Writes only files that differ, and overwrites only
/// files that the last export wrote. New files are renamed into place after all are on disk. Files
/// that no note needs any more are moved to `.tavi-export/removed/`.
class Exporter {
 public:
  /// Creates the folder if necessary, and locks it. Throws std::runtime_error, also if another
  /// export into the folder is running.
  explicit Exporter(std::filesystem::path folder);

  /// Throws what the store throws, std::filesystem::filesystem_error and vault::FileFault.
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
  std::map<std::string, std::filesystem::path> written_;  ///< temporary files by their final paths
  std::filesystem::path removed_;                         ///< the folder for files moved away
  ExportReport report_;
};

}  // namespace tavi::exporting

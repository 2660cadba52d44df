#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

#include "domain/store_errors.h"
#include "platform/markdown/ast.h"
#include "platform/markdown/operations.h"
#include "platform/system/file_types.h"
#include "store/database_store.h"
#include "store/note_conversion.h"
#include "store/temporary_file.h"

namespace tavi {
namespace {

namespace fs = std::filesystem;
using tavimodel::KVNote;
using tavimodel::KVNoteFile;
using tavimodel::UnlinkedFiles;
using zephyrdown::withOperations;
using zephyrdown::ZDKAST;

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

[[noreturn]] void fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

std::string contents(const fs::path& path) {
  const File file(std::fopen(path.c_str(), "rbe"));
  if (!file) fail("Could not read the attachment");
  std::string bytes(static_cast<std::size_t>(fs::file_size(path)), '\0');
  bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  if (std::ferror(file.get()) != 0) fail("Could not read the attachment");
  return bytes;
}

/// The Markdown link to an attachment. An SVG conforms to image too, but is linked as a file, so it
/// is checked first.
std::string linkTo(const std::string& filename) {
  const platform::system::FileType type = platform::system::fileTypeOf(filename);
  if (type.conformsToSVG) return ZDKAST::markdownFile(filename, filename, false);
  if (type.conformsToImage) return ZDKAST::markdownImage("", filename, "");
  return ZDKAST::markdownFile(filename, filename, type.conformsToPDF);
}

}  // namespace

std::vector<AttachmentInfo> TaviDatabaseStore::listAttachments(const std::string& id) {
  std::vector<AttachmentInfo> attachments;
  for (const KVNoteFile& file : unlockedNoteWithID(id).orderedFiles()) {
    attachments.push_back({file.filename.value_or(""), file.fileSizeValue});
  }
  return attachments;
}

WriteResponse TaviDatabaseStore::addAttachment(const std::string& id, const std::string& bytes,
                                               const std::string& filename) {
  KVNote& note = unlockedNoteWithID(id);
  KVNoteFile::checkName(filename);
  const TemporaryFile temporary(bytes, filename);
  return change(note, [&] {
    const std::string stored =
        KVNoteFile::getOrCreateFileFromURL(temporary.path(), note).filename.value_or(filename);
    const auto results = ZDKAST::viewing(note.text()).appendText(linkTo(stored));
    updateText(note, withOperations(note.text(), results), UnlinkedFiles::keep);
  });
}

WriteResponse TaviDatabaseStore::deleteAttachment(const std::string& id,
                                                  const std::string& filename) {
  KVNote& note = unlockedNoteWithID(id);
  const KVNoteFile* found = note.attachmentForFilename(filename);
  if (found == nullptr) throw NoteStoreError::attachmentNotFound(filename);
  const KVNoteFile file = *found;
  return change(note, [&] {
    const auto results = ZDKAST::viewing(note.text()).removeLinks([&](std::string_view name) {
      return note.linkNames(name, file);
    });
    updateText(note, withOperations(note.text(), results), UnlinkedFiles::keep);
    note.removeFile(file);
  });
}

std::string TaviDatabaseStore::readAttachment(const std::string& id, const std::string& filename) {
  KVNote& note = unlockedNoteWithID(id);
  const KVNoteFile* file = note.attachmentForFilename(filename);
  if (file == nullptr) throw NoteStoreError::attachmentNotFound(filename);
  const auto path = note.fileURL(*file);
  if (!path) {
    throw NoteStoreError::storeUnavailable("Attachment file not found on disk: " + filename);
  }
  return contents(*path);
}

}  // namespace tavi

#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tavimodel {

class KVNote;

/// A file attached to a note: its row, and where its bytes lie.
class KVNoteFile {
 public:
  std::int64_t id = 0;  ///< 0: not in the database yet
  std::optional<std::string> filename;
  std::int64_t fileSizeValue = 0;  ///< bytes
  std::int64_t position = 0;
  std::optional<std::string> storedName;  ///< under the files folder

  /// Throws std::runtime_error for a name that cannot be stored: an empty one, a folder's, one with
  /// a slash or a NUL, one longer than 255 bytes or not valid UTF-8.
  static void checkName(const std::string& name);

  /// Takes the local file at `source` into the note's files, under its own name or, where the note
  /// has one of that name, with a number ("photo 2.jpg"). The caller gives the file away: it may be
  /// gone afterwards, or still there. The bytes are on the disk when this returns, and belong to
  /// the note with the context's next save. Throws std::runtime_error for a name that cannot be
  /// stored, std::system_error when the bytes cannot be taken; then the note's files hold nothing
  /// of it.
  static const KVNoteFile& getOrCreateFileFromURL(const std::filesystem::path& source,
                                                  KVNote& note);
};

}  // namespace tavimodel

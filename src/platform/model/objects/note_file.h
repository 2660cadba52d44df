#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace tavimodel {

class KVNote;

/// A file attached to a note: its row, and the name under which its bytes are stored.
class KVNoteFile {
 public:
  std::int64_t id = 0;  ///< 0: not in the database yet
  std::optional<std::string> filename;
  std::int64_t fileSizeValue = 0;  ///< bytes
  std::int64_t position = 0;
  std::optional<std::string> storedName;  ///< in the files folder; absent: no bytes on this machine

  /// Throws std::runtime_error for a name that cannot be stored: if it is empty, "." or "..",
  /// contains a slash or NUL, is longer than 255 bytes, or is not valid UTF-8.
  static void checkName(const std::string& name);

  /// Attaches the local file at `source` to the note under its own name or, if that is taken, with
  /// a number ("photo 2.jpg"). The file may be moved or copied, so it may not exist afterwards. Its
  /// bytes are on disk when this returns, and its row is stored by the context's next save. Throws
  /// std::runtime_error for a name that cannot be stored, and std::system_error if the bytes cannot
  /// be stored; the note is then unchanged.
  static const KVNoteFile& getOrCreateFileFromURL(const std::filesystem::path& source,
                                                  KVNote& note);
};

}  // namespace tavimodel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

  /// Adds a file to the note, under the name given or, where the note has one of that name, with a
  /// number ("photo 2.jpg"). The bytes are on the disk when this returns, and belong to the note
  /// with the context's next save. Throws std::runtime_error for a name that cannot be stored (an
  /// empty one, a folder's, one with a slash or a NUL, one longer than 255 bytes or not valid
  /// UTF-8), std::system_error when the bytes cannot; then nothing is left.
  static const KVNoteFile& createFile(const std::string& filename, std::string_view bytes,
                                      KVNote& note);
};

}  // namespace tavimodel

#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace tavi::exporting {

/// The files that an export wrote into a folder. Stored there as `.tavi-export/files.json`, so that
/// the next export recognizes its own files and the user's changes to them.
struct Manifest {
  /// One file.
  struct Entry {
    std::string note;    ///< the id of its note
    std::string digest;  ///< SHA-256 (FIPS 180-4) of the bytes, in hexadecimal digits
    /// The digest of the file that this one replaces, which a killed run may have left in place.
    /// Empty if there was none.
    std::string digestBefore;
    bool isNote = false;  ///< whether it is the note itself rather than an attachment

    /// Whether an export wrote the file with the digest `found`.
    bool isOurs(const std::string& found) const {
      return found == digest || (!digestBefore.empty() && found == digestBefore);
    }
  };

  std::map<std::string, Entry> files;  ///< by path relative to the folder

  /// Empty if the folder has no manifest. Throws std::runtime_error if it cannot be read.
  static Manifest read(const std::filesystem::path& folder);
  /// Replaces the old manifest atomically. Throws vault::FileFault and
  /// std::filesystem::filesystem_error.
  void write(const std::filesystem::path& folder) const;
};

/// The folder `.tavi-export`, where an export keeps its own files.
std::filesystem::path bookkeepingFolder(const std::filesystem::path& folder);

}  // namespace tavi::exporting

#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace tavi::exporting {

/// What an export wrote into a folder, kept there as `.tavi-export/files.json`, so that the next
/// one knows its files, and what the user has changed in them.
struct Manifest {
  struct Entry {
    std::string note;    ///< its id
    std::string digest;  ///< SHA-256 of the bytes, hexadecimal
    /// Of what stood there when the file was about to be written: it may be that still, where a
    /// run was killed. Empty for none.
    std::string digestBefore;
    bool isNote = false;  ///< else an attachment of it

    bool isOurs(const std::string& found) const {
      return found == digest || (!digestBefore.empty() && found == digestBefore);
    }
  };

  std::map<std::string, Entry> files;  ///< by the path from the folder

  /// Empty where the folder holds none. Throws std::runtime_error for one that cannot be read.
  static Manifest read(const std::filesystem::path& folder);
  /// Replaces the old one at once. Throws vault::FileFault.
  void write(const std::filesystem::path& folder) const;
};

/// `.tavi-export` in the folder.
std::filesystem::path bookkeepingFolder(const std::filesystem::path& folder);

}  // namespace tavi::exporting

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tavi::vault {

struct FoundFile {
  std::filesystem::path path;  ///< absolute, without symbolic links
  std::string relative;        ///< from the folder, "work/draft.md"; bytes as the disk has them
};

struct LeftOut {
  std::string path;  ///< as FoundFile::relative, or what the user named
  std::string why;   ///< "it is a symbolic link"
};

/// What lies in a folder, each list in the order of names.
struct Folder {
  std::filesystem::path root;     ///< absolute, without symbolic links
  std::vector<FoundFile> notes;   ///< Markdown files
  std::vector<FoundFile> others;  ///< all other regular files
  std::vector<LeftOut> leftOut;   ///< links, FIFOs, folders that cannot be read
  std::size_t hidden =
      0;  ///< names that begin with a dot: they are not looked at, nor what is below
};

/// Walks the folder, or takes the one Markdown file that `path` names. Follows no symbolic link but
/// `path` itself. A folder "_resources" holds no notes. Throws std::system_error when there is
/// nothing at `path`.
Folder readFolder(const std::filesystem::path& path);

bool isMarkdownName(const std::filesystem::path& name);

}  // namespace tavi::vault

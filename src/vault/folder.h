#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace tavi::vault {

/// A file below a folder.
struct FoundFile {
  std::filesystem::path path;  ///< absolute, without symbolic links
  std::string relative;        ///< relative to the folder: "work/draft.md"; not necessarily UTF-8
};

/// A file that is not imported or exported, and the reason.
struct LeftOut {
  std::string path;  ///< like FoundFile::relative, or as the user gave it
  std::string why;   ///< "it is a symbolic link"
};

/// The contents of a folder and its subfolders; each list is sorted by name.
struct Folder {
  std::filesystem::path root;     ///< absolute, without symbolic links
  std::vector<FoundFile> notes;   ///< Markdown files
  std::vector<FoundFile> others;  ///< all other regular files
  std::vector<LeftOut> leftOut;   ///< links, FIFOs, folders that cannot be read
  std::size_t hidden = 0;         ///< files and folders whose names begin with a dot; skipped
};

/// Lists a folder recursively, or the single Markdown file at `path`. Follows no symbolic link
/// except `path` itself. All files in a folder named "_resources" are `others`. Throws
/// std::system_error if `path` does not exist.
Folder readFolder(const std::filesystem::path& path);

/// Whether the extension is one of Markdown's: md, markdown, mdown or mkd, in any case.
bool isMarkdownName(const std::filesystem::path& name);

}  // namespace tavi::vault

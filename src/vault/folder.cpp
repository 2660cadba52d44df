#include "vault/folder.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <system_error>

#include "vault/names.h"

namespace tavi::vault {
namespace {

namespace fs = std::filesystem;

class Walk {
 public:
  explicit Walk(Folder& folder) : folder_(folder) {}

  void enter(const fs::path& path, const std::string& prefix, bool holdsNotes) {
    std::vector<fs::path> names;
    std::error_code error;
    for (fs::directory_iterator entry(path, error), end; !error && entry != end;
         entry.increment(error)) {
      names.push_back(entry->path().filename());
    }
    if (error) {
      const std::string shown = prefix.empty() ? "." : prefix;
      folder_.leftOut.push_back({shown, "it cannot be read (" + error.message() + ")"});
    }
    std::sort(names.begin(), names.end());
    for (const fs::path& name : names) take(path / name, prefix + name.string(), holdsNotes);
  }

  void take(const fs::path& path, const std::string& relative, bool holdsNotes) {
    const std::string name = path.filename().string();
    std::error_code error;
    const fs::file_status status = fs::symlink_status(path, error);
    if (name.starts_with('.')) {
      ++folder_.hidden;
    } else if (fs::is_symlink(status)) {
      folder_.leftOut.push_back({relative, "it is a symbolic link"});
    } else if (fs::is_directory(status)) {
      enter(path, relative + "/", holdsNotes && name != "_resources");
    } else if (fs::is_regular_file(status)) {
      auto& list = holdsNotes && isMarkdownName(name) ? folder_.notes : folder_.others;
      list.push_back({path, relative});
    } else {
      folder_.leftOut.push_back({relative, "it is no regular file"});
    }
  }

 private:
  Folder& folder_;
};

}  // namespace

bool isMarkdownName(const fs::path& name) {
  std::string extension = name.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  constexpr std::array known{".md", ".markdown", ".mdown", ".mkd"};
  return std::find(known.begin(), known.end(), extension) != known.end();
}

Folder readFolder(const fs::path& path) {
  Folder folder;
  const fs::path canonical = fs::canonical(path);
  if (fs::is_directory(canonical)) {
    folder.root = canonical;
    Walk(folder).enter(canonical, "", true);
    return folder;
  }
  folder.root = canonical.parent_path();
  const std::string name = canonical.filename().string();
  if (!isMarkdownName(canonical)) {
    folder.leftOut.push_back({name, "it is neither a folder nor a Markdown file"});
    return folder;
  }
  Walk(folder).take(canonical, name, true);
  return folder;
}

}  // namespace tavi::vault

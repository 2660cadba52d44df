#include "platform/model/objects/note_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <unordered_set>

#include "platform/model/objects/managed_object_context.h"
#include "platform/system/file_types.h"
#include "platform/text/folding.h"
#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

/// The limit of common file systems in bytes, so that an attachment can be saved anywhere.
constexpr std::size_t longestName = 255;

/// The name for use in a one-line message.
std::string onOneLine(const std::string& name) {
  std::string shown = platform::text::replacingInvalidUTF8(name.substr(0, longestName));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c >= '\0' && c < ' '; }, ' ');
  return shown;
}

/// The first free name of "photo.jpg", "photo 2.jpg", "photo 3.jpg" and so on. Canonically
/// equivalent names count as equal, as on some file systems.
std::string freeName(const std::string& wanted, const std::vector<KVNoteFile>& files) {
  std::unordered_set<std::string> taken;
  for (const KVNoteFile& file : files) {
    if (file.filename) taken.insert(platform::text::canonicallyComposed(*file.filename));
  }
  const std::string_view extension = platform::system::pathExtension(wanted);
  const std::string stem =
      wanted.substr(0, wanted.size() - (extension.empty() ? 0 : extension.size() + 1));
  const std::string suffix = wanted.substr(stem.size());
  std::string name = wanted;
  for (int number = 2; taken.contains(platform::text::canonicallyComposed(name)); ++number) {
    name = fmt::format("{} {}{}", stem, number, suffix);
  }
  return name;
}

}  // namespace

void KVNoteFile::checkName(const std::string& name) {
  const char* fault = nullptr;
  if (name.empty()) fault = "it is empty";
  if (name == "." || name == "..") fault = "it names a folder";
  if (name.find('/') != std::string::npos) fault = "it has a slash";
  if (name.find('\0') != std::string::npos) fault = "it has a NUL character";
  if (!platform::text::isValidUTF8(name)) fault = "it is not valid UTF-8";
  if (name.size() > longestName) fault = "it is longer than 255 bytes";
  if (fault != nullptr) {
    throw std::runtime_error(
        fmt::format("The file name \"{}\" cannot be stored: {}.", onOneLine(name), fault));
  }
}

const KVNoteFile& KVNoteFile::getOrCreateFileFromURL(const std::filesystem::path& source,
                                                     KVNote& note) {
  KVNoteFile file;
  file.filename = source.filename().string();
  checkName(*file.filename);
  file.filename = freeName(*file.filename, note.orderedFiles());
  checkName(*file.filename);
  const FileStore::Staged staged = note.context().files().stage(source);
  file.storedName = staged.storedName;
  file.fileSizeValue = staged.size;
  return note.addFile(std::move(file));
}

}  // namespace tavimodel

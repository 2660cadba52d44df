#include "export/manifest.h"

#include <fmt/format.h>

#include <boost/json/value.hpp>
#include <stdexcept>

#include "bytes/byte_sink.h"
#include "json/json_reader.h"
#include "json/json_writer.h"
#include "vault/files.h"

namespace tavi::exporting {
namespace {

namespace fs = std::filesystem;
using boost::json::object;

constexpr std::uint64_t largest = std::uint64_t{1} << 30;  // bytes

std::string text(const object& entry, std::string_view key) {
  const auto* value = entry.if_contains(key);
  return value != nullptr ? std::string(value->as_string()) : std::string();
}

}  // namespace

fs::path bookkeepingFolder(const fs::path& folder) {
  return folder / ".tavi-export";
}

Manifest Manifest::read(const fs::path& folder) {
  const fs::path path = bookkeepingFolder(folder) / "files.json";
  Manifest manifest;
  if (!fs::exists(path)) return manifest;
  try {
    const auto json = parseJSON(vault::contentsOf(path, largest));
    if (json.as_object().at("version").as_int64() != 1)
      throw std::runtime_error("a newer tavi-export wrote it");
    for (const auto& element : json.as_object().at("files").as_array()) {
      const object& entry = element.as_object();
      manifest.files[text(entry, "path")] = {.note = text(entry, "note"),
                                             .digest = text(entry, "sha256"),
                                             .digestBefore = text(entry, "before"),
                                             .isNote = entry.at("isNote").as_bool()};
    }
  } catch (const std::exception& error) {
    throw std::runtime_error(fmt::format(
        "Cannot read {}: {}. Without it the export does not know its own files; remove it to have "
        "them compared anew.",
        path.string(), error.what()));
  }
  return manifest;
}

void Manifest::write(const fs::path& folder) const {
  StringSink sink;
  JSONWriter json(sink, JSONStyle::commandLine);
  json.beginObject();
  json.key("version");
  json.integer(1);
  json.key("files");
  json.beginArray();
  for (const auto& [path, entry] : files) {
    json.beginObject();
    json.key("path");
    json.string(path);
    json.key("note");
    json.string(entry.note);
    json.key("isNote");
    json.boolean(entry.isNote);
    json.key("sha256");
    json.string(entry.digest);
    if (!entry.digestBefore.empty()) {
      json.key("before");
      json.string(entry.digestBefore);
    }
    json.endObject();
    sink.put('\n');
  }
  json.endArray();
  json.endObject();
  const fs::path temporary = bookkeepingFolder(folder) / "files.json.new";
  vault::writeFile(temporary, sink.take());
  vault::syncFolder(bookkeepingFolder(folder));
  fs::rename(temporary, bookkeepingFolder(folder) / "files.json");
}

}  // namespace tavi::exporting

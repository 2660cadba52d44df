#include "export/note_file.h"

#include <utility>
#include <vector>

#include "vault/dates.h"
#include "vault/front_matter.h"

namespace tavi::exporting {
namespace {

using vault::Field;

Field field(std::string key, std::string value) {
  return {.key = std::move(key), .values = {std::move(value)}};
}

void addDate(std::vector<Field>& fields, std::string key, Instant date) {
  if (date == Instant::distantPast()) return;  // unknown
  fields.push_back(field(std::move(key), vault::writeDate(date.seconds)));
}

void addList(std::vector<Field>& fields, std::string key, const std::vector<std::string>& values) {
  if (!values.empty()) fields.push_back({.key = std::move(key), .values = values, .isList = true});
}

}  // namespace

std::string noteFile(const Note& note) {
  const NoteMetadata& metadata = note.metadata;
  std::vector<Field> fields{field("tavi", "1"), field("id", metadata.id)};
  if (metadata.locked) {
    fields.push_back(field("locked", "true"));
    fields.push_back(field("title", metadata.title));
  }
  addDate(fields, "created", metadata.created);
  addDate(fields, "modified", metadata.modified);
  fields.push_back(field("place", std::string(rawText(metadata.location))));
  addList(fields, "tags", metadata.tags);
  addList(fields, "pins", metadata.pins);
  addList(fields, "attachments", metadata.attachments);
  return vault::writeFrontMatter(fields) + note.content;
}

std::string noteIDOf(std::string_view file) {
  const auto found = vault::readFrontMatter(file);
  return found && found->find("tavi") != nullptr ? found->value("id") : std::string();
}

}  // namespace tavi::exporting

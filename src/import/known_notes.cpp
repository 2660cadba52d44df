#include "import/known_notes.h"

#include <algorithm>

#include "domain/content_hash.h"
#include "domain/tag_parser.h"

namespace tavi::import {
namespace {

/// Sorts names, so that lists can be compared as sets.
std::vector<std::string> sorted(std::vector<std::string> names) {
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> pinNames(const std::vector<std::string>& pins) {
  std::vector<std::string> names;
  for (const std::string& pin : pins)
    names.push_back(pin == "global" ? pin : "#" + TagParser::canonicalName(pin));
  return sorted(std::move(names));
}

std::vector<std::string> fileNames(const ImportedNote& note) {
  std::vector<std::string> names;
  for (const ImportedNote::File& file : note.files) names.push_back(file.filename);
  return sorted(std::move(names));
}

}  // namespace

KnownNotes::KnownNotes(NoteStore* store) : store_(store) {
  if (store == nullptr) return;
  store->listNotes({})->forEach([&](const NoteMetadata& note) {
    NoteMetadata kept = note;
    kept.title.clear();
    if (!kept.locked) idsByHash_.emplace(kept.contentHash, kept.id);
    notes_.emplace(kept.id, std::move(kept));
  });
}

const NoteMetadata* KnownNotes::find(const std::string& id) const {
  const auto found = notes_.find(id);
  return found == notes_.end() ? nullptr : &found->second;
}

bool KnownNotes::hasText(const NoteMetadata& metadata, const std::string& text) const {
  return metadata.contentLength == static_cast<std::int64_t>(text.size()) &&
         metadata.contentHash == ContentHash::of(text) &&
         store_->noteWithID(metadata.id).content == text;
}

std::string KnownNotes::take(const ImportedNote& note) {
  const auto [begin, end] = idsByHash_.equal_range(ContentHash::of(note.text));
  for (auto entry = begin; entry != end; ++entry) {
    const std::string& id = entry->second;
    const NoteMetadata& known = notes_.at(id);
    if (taken_.contains(id) || !hasText(known, note.text)) continue;
    if (sorted(known.attachments) != fileNames(note)) continue;
    taken_.insert(id);
    return id;
  }
  return {};
}

std::vector<std::string> KnownNotes::differences(const ImportedNote& note, bool isExported) const {
  const NoteMetadata& known = notes_.at(note.id);
  std::vector<std::string> found;
  if (known.locked) {
    found.emplace_back("it is locked now");
    return found;
  }
  if (!hasText(known, note.text)) found.emplace_back("text");
  if (sorted(known.attachments) != fileNames(note)) found.emplace_back("attachments");
  if (!isExported) return found;
  if (pinNames(known.pins) != pinNames(note.pins)) found.emplace_back("pins");
  if (known.location != note.location) found.emplace_back("place");
  return found;
}

}  // namespace tavi::import

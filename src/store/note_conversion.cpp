#include "store/note_conversion.h"

#include <algorithm>

#include "domain/content_hash.h"
#include "platform/markdown/hashtag.h"
#include "platform/text/ordering.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteFile;

namespace {

Instant instant(const std::optional<double>& seconds) {
  return seconds ? Instant{*seconds} : Instant::distantPast();
}

NoteLocation locationOf(const KVNote& note) {
  if (note.trashedValue()) return NoteLocation::trash;
  return note.archivedValue() ? NoteLocation::archive : NoteLocation::notes;
}

std::vector<std::string> pinsOf(KVNote& note) {
  std::vector<std::string> pins = sortedHashtags(note.pinnedInTags());
  if (note.pinnedValue()) pins.insert(pins.begin(), "global");
  return pins;
}

}  // namespace

std::vector<std::string> sortedByCodePoints(std::vector<std::string> texts) {
  if (texts.size() > 1) std::sort(texts.begin(), texts.end(), platform::text::CodePointLess());
  return texts;
}

std::vector<std::string> sortedHashtags(const std::vector<std::string>& names) {
  std::vector<std::string> hashtags;
  for (const std::string& name : names) {
    auto hashtag = zephyrdown::ZDKHashtag::hashtagStringForTagName(name);
    if (hashtag) hashtags.push_back(std::move(*hashtag));
  }
  return sortedByCodePoints(std::move(hashtags));
}

NoteMetadata metadataOf(KVNote& note) {
  NoteMetadata metadata;
  metadata.id = note.uniqueIdentifier();
  metadata.title = note.title().value_or("");
  metadata.locked = note.encryptedValue();
  metadata.created = instant(note.creationDate());
  metadata.modified = instant(note.modificationDate());
  metadata.pins = pinsOf(note);
  metadata.location = locationOf(note);
  metadata.tags = sortedByCodePoints(note.tagsStrings());
  if (metadata.locked) return metadata;
  const tavimodel::TextFacts& facts = note.textFacts();
  metadata.contentHash = ContentHash::ofDigest(facts.digest);
  metadata.contentLength = facts.length;
  metadata.todos = facts.todoIncomplete;
  metadata.done = facts.todoCompleted;
  for (const KVNoteFile& file : note.orderedFiles()) {
    if (file.filename) metadata.attachments.push_back(*file.filename);
  }
  return metadata;
}

Note noteOf(KVNote& note) {
  return {metadataOf(note), note.encryptedValue() ? std::string() : note.text()};
}

}  // namespace tavi

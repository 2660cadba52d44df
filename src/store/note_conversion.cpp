#include "store/note_conversion.h"

#include <algorithm>

#include "domain/content_hash.h"
#include "platform/markdown/hashtag.h"
#include "platform/text/ordering.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteFile;
using tavimodel::NoteView;

namespace {

Instant instant(const std::optional<double>& seconds) {
  return seconds ? Instant{*seconds} : Instant::distantPast();
}

NoteLocation locationOf(const NoteView& note) {
  if (note.trashed) return NoteLocation::trash;
  return note.archived ? NoteLocation::archive : NoteLocation::notes;
}

std::vector<std::string> pinsOf(const NoteView& note) {
  std::vector<std::string> pins = sortedHashtags(note.pinnedInTags);
  if (note.pinned) pins.insert(pins.begin(), "global");
  return pins;
}

void assign(std::vector<std::string>& texts, std::span<const std::string_view> views) {
  texts.resize(views.size());
  for (std::size_t i = 0; i < views.size(); ++i) texts[i] = views[i];
}

void sortByCodePoints(std::vector<std::string>& texts) {
  if (texts.size() > 1) std::sort(texts.begin(), texts.end(), platform::text::CodePointLess());
}

std::vector<std::string_view> views(const std::vector<std::string>& texts) {
  return {texts.begin(), texts.end()};
}

}  // namespace

std::vector<std::string> sortedByCodePoints(std::vector<std::string> texts) {
  sortByCodePoints(texts);
  return texts;
}

std::vector<std::string> sortedHashtags(std::span<const std::string_view> names) {
  std::vector<std::string> hashtags;
  for (const std::string_view name : names) {
    auto hashtag = zephyrdown::ZDKHashtag::hashtagStringForTagName(name);
    if (hashtag) hashtags.push_back(std::move(*hashtag));
  }
  return sortedByCodePoints(std::move(hashtags));
}

void convert(const NoteView& note, NoteMetadata& metadata) {
  metadata.id = note.uniqueIdentifier;
  metadata.title = note.title;
  metadata.locked = note.encrypted;
  metadata.created = instant(note.creationDate);
  metadata.modified = instant(note.modificationDate);
  metadata.pins = pinsOf(note);
  metadata.location = locationOf(note);
  assign(metadata.tags, note.tags);
  const bool readable = !note.encrypted;
  const bool hashed = readable && !note.digest.empty();
  metadata.contentHash = hashed ? ContentHash::ofDigest(note.digest) : std::string();
  metadata.contentLength = readable ? note.length : 0;
  metadata.todos = readable ? note.todoIncomplete : 0;
  metadata.done = readable ? note.todoCompleted : 0;
  assign(metadata.attachments, readable ? note.filenames : std::span<const std::string_view>());
}

NoteMetadata metadataOf(KVNote& note) {
  NoteView view;
  view.uniqueIdentifier = note.uniqueIdentifier();
  if (note.title()) view.title = *note.title();
  view.creationDate = note.creationDate();
  view.modificationDate = note.modificationDate();
  view.trashed = note.trashedValue();
  view.archived = note.archivedValue();
  view.pinned = note.pinnedValue();
  view.encrypted = note.encryptedValue();
  const std::vector<std::string> sortedTags = sortedByCodePoints(note.tagsStrings());
  const std::vector<std::string_view> tags = views(sortedTags);
  const std::vector<std::string_view> pins = views(note.pinnedInTags());
  view.tags = tags;
  view.pinnedInTags = pins;
  NoteMetadata metadata;
  if (view.encrypted) {
    convert(view, metadata);
    return metadata;
  }
  const tavimodel::TextFacts& facts = note.textFacts();
  view.digest = facts.digest;
  view.length = facts.length;
  view.todoIncomplete = note.todoIncompleteValue();
  view.todoCompleted = note.todoCompletedValue();
  std::vector<std::string_view> filenames;
  for (const KVNoteFile& file : note.orderedFiles()) {
    if (file.filename) filenames.push_back(*file.filename);
  }
  view.filenames = filenames;
  convert(view, metadata);
  return metadata;
}

Note noteOf(KVNote& note) {
  return {metadataOf(note), note.encryptedValue() ? std::string() : note.textOnce()};
}

}  // namespace tavi

#include "memory_note_store.h"

#include <algorithm>

#include "domain/content_hash.h"
#include "domain/store_errors.h"
#include "domain/tag_parser.h"
#include "domain/text_editor.h"
#include "domain/text_searcher.h"
#include "platform/text/folding.h"

namespace tavi::testing {
namespace {

using StoredNote = MemoryNoteStore::StoredNote;

void refresh(StoredNote& note) {
  note.metadata.contentHash = note.metadata.locked ? "" : ContentHash::of(note.content);
  note.metadata.contentLength =
      note.metadata.locked ? 0 : static_cast<std::int64_t>(note.content.size());
  note.metadata.attachments.clear();
  for (const auto& [name, bytes] : note.files) note.metadata.attachments.push_back(name);
}

Note withContent(const StoredNote& note) {
  return {note.metadata, note.metadata.locked ? "" : note.content};
}

/// The number of times that a term of a query stands in the text, or 1 for a tag.
std::int64_t matchCount(const StoredNote& note, const std::string& query) {
  if (query.starts_with('#')) {
    const std::string name = TagParser::canonicalName(query);
    return std::ranges::any_of(note.metadata.tags, [&](const std::string& tag) {
      return tag == name || tag.starts_with(name + "/");
    });
  }
  return static_cast<std::int64_t>(TextSearcher::search(note.content, query, 0, {}).size());
}

}  // namespace

StoredNote& MemoryNoteStore::add(const std::string& title, const std::string& content) {
  const double day = 86400.0 * static_cast<double>(notes_.size());
  StoredNote& note = notes_.emplace_back();
  note.metadata.id = "ID-" + std::to_string(notes_.size());
  note.metadata.title = title;
  note.metadata.created = note.metadata.modified = Instant{1767225600.0 + day};
  note.content = content;
  refresh(note);
  return note;
}

StoredNote& MemoryNoteStore::find(const std::string& id) {
  for (StoredNote& note : notes_)
    if (note.metadata.id == id) return note;
  throw NoteStoreError::noteNotFound(id);
}

StoredNote& MemoryNoteStore::findUnlocked(const std::string& id) {
  StoredNote& note = find(id);
  if (note.metadata.locked) throw NoteStoreError::noteIsLocked(id);
  return note;
}

StoredNote& MemoryNoteStore::findTitled(const std::string& title) {
  std::vector<StoredNote*> found;
  for (StoredNote& note : notes_) {
    if (note.metadata.location == NoteLocation::notes &&
        platform::text::equalIgnoringCase(note.metadata.title, title))
      found.push_back(&note);
  }
  if (found.empty()) throw NoteStoreError::noNoteWithTitle(title);
  if (found.size() > 1) {
    throw NoteStoreError::titleMatchesMultiple(title, static_cast<std::int64_t>(found.size()));
  }
  return *found[0];
}

Note MemoryNoteStore::noteWithID(const std::string& id) {
  calls.push_back("noteWithID");
  return withContent(findUnlocked(id));
}

Note MemoryNoteStore::noteWithTitle(const std::string& title) {
  calls.push_back("noteWithTitle");
  const StoredNote& note = findTitled(title);
  if (note.metadata.locked) throw NoteStoreError::noteIsLocked(title);
  return withContent(note);
}

NoteMetadata MemoryNoteStore::metadataWithID(const std::string& id) {
  calls.push_back("metadataWithID");
  return find(id).metadata;
}

NoteMetadata MemoryNoteStore::metadataWithTitle(const std::string& title) {
  calls.push_back("metadataWithTitle");
  return findTitled(title).metadata;
}

/// The notes in question, by the title where that is asked for and else by the order of creation.
std::vector<const StoredNote*> MemoryNoteStore::page(const ListRequest& request,
                                                     const std::string& query) {
  std::vector<const StoredNote*> rows;
  for (const StoredNote& note : notes_) {
    if (request.location && note.metadata.location != *request.location) continue;
    if (request.tag && matchCount(note, "#" + *request.tag) == 0) continue;
    if (query.empty() || matchCount(note, query) > 0) rows.push_back(&note);
  }
  const SortCriterion& first = request.sort.at(0);
  if (first.field == SortField::title) {
    std::ranges::sort(rows, {}, [](const StoredNote* note) { return note->metadata.title; });
    if (first.order == SortOrder::desc) std::ranges::reverse(rows);
  }
  const auto count = static_cast<std::int64_t>(rows.size());
  const std::int64_t begin = std::min(request.offset, count);
  const std::int64_t end = begin + std::min(request.limit, count - begin);
  return {rows.begin() + begin, rows.begin() + end};
}

RecordList<NoteMetadata> MemoryNoteStore::listNotes(const ListRequest& request) {
  calls.push_back("listNotes");
  std::vector<NoteMetadata> rows;
  for (const StoredNote* note : page(request, "")) rows.push_back(note->metadata);
  return recordList(std::move(rows));
}

RecordList<Note> MemoryNoteStore::listNotesWithContent(const ListRequest& request) {
  calls.push_back("listNotesWithContent");
  std::vector<Note> rows;
  for (const StoredNote* note : page(request, "")) rows.push_back(withContent(*note));
  return recordList(std::move(rows));
}

RecordList<SearchResult> MemoryNoteStore::searchNotes(const std::string& query,
                                                      const ListRequest& request) {
  calls.push_back("searchNotes " + query);
  std::vector<SearchResult> rows;
  for (const StoredNote* note : page(request, query))
    rows.push_back({note->metadata, matchCount(*note, query)});
  return recordList(std::move(rows));
}

RecordList<SearchResultWithContent> MemoryNoteStore::searchNotesWithContent(
    const std::string& query, const ListRequest& request) {
  calls.push_back("searchNotesWithContent " + query);
  std::vector<SearchResultWithContent> rows;
  for (const StoredNote* note : page(request, query))
    rows.push_back({withContent(*note), matchCount(*note, query)});
  return recordList(std::move(rows));
}

std::vector<SearchMatch> MemoryNoteStore::searchInNote(const std::string& id,
                                                       const std::string& string,
                                                       std::int64_t context,
                                                       std::optional<std::int64_t> limit) {
  calls.push_back("searchInNote");
  return TextSearcher::search(findUnlocked(id).content, string, context, limit);
}

template <class Change>
WriteResponse MemoryNoteStore::changed(StoredNote& note, const Change& change) {
  const NoteMetadata before = note.metadata;
  change();
  refresh(note);
  return WriteResponse::difference(before, note.metadata);
}

/// A file whose name no longer stands in the text is removed, as far as the gate lets it.
WriteResponse MemoryNoteStore::withText(StoredNote& note, const std::string& text,
                                        const RemovalGate& gate) {
  std::set<std::string> removed;
  for (const auto& [name, bytes] : note.files)
    if (text.find(name) == std::string::npos) removed.insert(name);
  const std::set<std::string> expected = gate.expected.value_or(std::set<std::string>{});
  if (!gate.force && removed != expected)
    throw NoteStoreError::attachmentRemovalGateFailed(removed, expected);
  return changed(note, [&] {
    note.content = text;
    std::erase_if(note.files, [&](const auto& file) { return removed.contains(file.first); });
  });
}

WriteResponse MemoryNoteStore::editNote(const std::string& id, const EditOperation& edit,
                                        const RemovalGate& gate) {
  calls.push_back("editNote");
  StoredNote& note = findUnlocked(id);
  return withText(note, TextEditor::applyEdit(edit, note.content, id), gate);
}

WriteResponse MemoryNoteStore::editNoteBatch(const std::string& id,
                                             const std::vector<EditOperation>& edits,
                                             const RemovalGate& gate) {
  calls.push_back("editNoteBatch");
  StoredNote& note = findUnlocked(id);
  return withText(note, TextEditor::applyEdits(edits, note.content, id), gate);
}

WriteResponse MemoryNoteStore::overwriteNote(const std::string& id, const std::string& text,
                                             const std::optional<std::string>& baseHash,
                                             const RemovalGate& gate) {
  calls.push_back("overwriteNote");
  StoredNote& note = findUnlocked(id);
  if (baseHash && *baseHash != note.metadata.contentHash) throw NoteStoreError::hashMismatch();
  return withText(note, text, gate);
}

Note MemoryNoteStore::createNote(const std::string& title,
                                 const std::optional<std::string>& content,
                                 const std::vector<std::string>& tags) {
  calls.push_back("createNote");
  StoredNote& note = add(title, "# " + title + (content ? "\n" + *content : ""));
  note.metadata.tags = tags;
  return withContent(note);
}

Note MemoryNoteStore::createNoteFromText(const std::string& text,
                                         const std::vector<std::string>& tags) {
  calls.push_back("createNoteFromText");
  StoredNote& note = add(text.substr(0, text.find('\n')), text);
  note.metadata.tags = tags;
  return withContent(note);
}

Note MemoryNoteStore::createNoteIfAbsent(const std::string& title,
                                         const std::optional<std::string>& content,
                                         const std::vector<std::string>& tags) {
  calls.push_back("createNoteIfAbsent");
  try {
    return withContent(findTitled(title));
  } catch (const NoteStoreError& error) {
    if (error.kind() != NoteStoreError::Case::noNoteWithTitle) throw;
    return createNote(title, content, tags);
  }
}

WriteResponse MemoryNoteStore::insertText(const std::string& id, const std::string& text,
                                          InsertPosition position) {
  calls.push_back("insertText");
  StoredNote& note = findUnlocked(id);
  return changed(note, [&] {
    note.content = position == InsertPosition::end ? note.content + text : text + note.content;
  });
}

WriteResponse MemoryNoteStore::addTags(const std::string& id,
                                       const std::vector<std::string>& tags) {
  calls.push_back("addTags");
  StoredNote& note = findUnlocked(id);
  return changed(note, [&] {
    for (const std::string& tag : tags)
      if (std::ranges::count(note.metadata.tags, tag) == 0) note.metadata.tags.push_back(tag);
    std::ranges::sort(note.metadata.tags);
  });
}

WriteResponse MemoryNoteStore::removeTags(const std::string& id,
                                          const std::vector<std::string>& tags) {
  calls.push_back("removeTags");
  StoredNote& note = findUnlocked(id);
  return changed(note, [&] {
    for (const std::string& tag : tags) std::erase(note.metadata.tags, tag);
  });
}

std::vector<std::string> MemoryNoteStore::listTags(const std::optional<std::string>& id) {
  calls.push_back("listTags");
  if (id) return find(*id).metadata.tags;
  std::set<std::string> tags;
  for (const StoredNote& note : notes_)
    tags.insert(note.metadata.tags.begin(), note.metadata.tags.end());
  return {tags.begin(), tags.end()};
}

std::int64_t MemoryNoteStore::renameTag(const std::string& oldName, const std::string& newName) {
  calls.push_back("renameTag");
  const std::int64_t count = tagNoteCount(oldName);
  for (StoredNote& note : notes_) {
    if (std::erase(note.metadata.tags, oldName) > 0 &&
        std::ranges::count(note.metadata.tags, newName) == 0)
      note.metadata.tags.push_back(newName);
  }
  return count;
}

std::int64_t MemoryNoteStore::deleteTag(const std::string& name) {
  calls.push_back("deleteTag");
  const std::int64_t count = tagNoteCount(name);
  for (StoredNote& note : notes_) std::erase(note.metadata.tags, name);
  return count;
}

std::int64_t MemoryNoteStore::tagNoteCount(const std::string& name) {
  return std::ranges::count_if(notes_, [&](const StoredNote& note) {
    return std::ranges::count(note.metadata.tags, name) > 0;
  });
}

bool MemoryNoteStore::tagExists(const std::string& name) {
  return tagNoteCount(name) > 0 || std::ranges::count(loneTags_, name) > 0;
}

WriteResponse MemoryNoteStore::moveNote(const std::string& id, NoteLocation target) {
  calls.push_back("moveNote");
  StoredNote& note = find(id);
  return changed(note, [&] { note.metadata.location = target; });
}

std::vector<AttachmentInfo> MemoryNoteStore::listAttachments(const std::string& id) {
  calls.push_back("listAttachments");
  std::vector<AttachmentInfo> attachments;
  for (const auto& [name, bytes] : findUnlocked(id).files)
    attachments.push_back({name, static_cast<std::int64_t>(bytes.size())});
  return attachments;
}

WriteResponse MemoryNoteStore::addAttachment(const std::string& id, const std::string& bytes,
                                             const std::string& filename) {
  calls.push_back("addAttachment");
  StoredNote& note = findUnlocked(id);
  return changed(note, [&] {
    note.files.emplace_back(filename, bytes);
    note.content += "[" + filename + "](" + filename + ")";
  });
}

WriteResponse MemoryNoteStore::deleteAttachment(const std::string& id,
                                                const std::string& filename) {
  calls.push_back("deleteAttachment");
  StoredNote& note = findUnlocked(id);
  return changed(note, [&] {
    const auto removed =
        std::erase_if(note.files, [&](const auto& file) { return file.first == filename; });
    if (removed == 0) throw NoteStoreError::attachmentNotFound(filename);
  });
}

std::string MemoryNoteStore::readAttachment(const std::string& id, const std::string& filename) {
  calls.push_back("readAttachment");
  for (const auto& [name, bytes] : findUnlocked(id).files)
    if (name == filename) return bytes;
  throw NoteStoreError::attachmentNotFound(filename);
}

std::vector<std::string> MemoryNoteStore::listPins(const std::optional<std::string>& id) {
  calls.push_back("listPins");
  if (id) return find(*id).metadata.pins;
  std::vector<std::string> pins;
  for (const StoredNote& note : notes_) {
    for (const std::string& pin : note.metadata.pins)
      if (std::ranges::count(pins, pin) == 0) pins.push_back(pin);
  }
  return pins;
}

WriteResponse MemoryNoteStore::withPin(const std::string& id, const std::string& pin,
                                       bool present) {
  StoredNote& note = find(id);
  return changed(note, [&] {
    std::erase(note.metadata.pins, pin);
    if (present) note.metadata.pins.push_back(pin);
  });
}

std::string MemoryNoteStore::tagPin(const std::string& tag) {
  if (!tagExists(tag)) throw NoteStoreError::tagNotFound(tag);
  return TagParser::hashtag(tag);
}

WriteResponse MemoryNoteStore::pinNote(const std::string& id) {
  calls.push_back("pinNote");
  return withPin(id, "global", true);
}

WriteResponse MemoryNoteStore::unpinNote(const std::string& id) {
  calls.push_back("unpinNote");
  return withPin(id, "global", false);
}

WriteResponse MemoryNoteStore::pinNoteInTag(const std::string& id, const std::string& tag) {
  calls.push_back("pinNoteInTag " + tag);
  return withPin(id, tagPin(tag), true);
}

WriteResponse MemoryNoteStore::unpinNoteInTag(const std::string& id, const std::string& tag) {
  calls.push_back("unpinNoteInTag " + tag);
  return withPin(id, tagPin(tag), false);
}

}  // namespace tavi::testing

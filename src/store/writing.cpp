#include <algorithm>
#include <iterator>
#include <unordered_set>

#include "domain/content_hash.h"
#include "domain/store_errors.h"
#include "domain/tag_parser.h"
#include "domain/text_editor.h"
#include "platform/markdown/ast.h"
#include "platform/markdown/hashtag.h"
#include "platform/markdown/operations.h"
#include "platform/model/objects/errors.h"
#include "platform/text/ordering.h"
#include "store/database_store.h"
#include "store/note_conversion.h"
#include "store/preferences.h"

namespace tavi {

using tavimodel::KVNote;
using tavimodel::KVNoteTag;
using tavimodel::UnlinkedFiles;
using zephyrdown::ZDKAST;
using zephyrdown::ZDKHashtag;

namespace {

/// The tag line of a new note: hashtags for the tags that its content does not contain.
std::string tagLine(const std::vector<std::string>& tags, const std::string& content) {
  std::vector<std::string> written;
  if (!content.empty() && !tags.empty()) written = zephyrdown::textSummary(content).tags;
  const std::unordered_set<std::string> inContent(written.begin(), written.end());
  std::string line;
  for (const std::string& tag : tags) {
    const std::string name = TagParser::canonicalName(tag);
    if (inContent.contains(name)) continue;
    const auto hashtag = ZDKHashtag::hashtagStringForTagName(name);
    if (!hashtag) continue;
    if (!line.empty()) line += ' ';
    line += *hashtag;
  }
  return line;
}

std::string headingOf(const std::string& title) {
  return "# " + title;
}

/// The title of a note with this text.
std::string titleOf(const std::string& text) {
  return zephyrdown::textSummary(text).title;
}

std::string composeText(const std::string& title, const std::string& content,
                        const std::vector<std::string>& tags) {
  const std::string line = tagLine(tags, content);
  const bool atBottom = line.empty() || TaviPreferences::tagsAtBottom();
  std::string text = headingOf(title);
  if (!atBottom) text += "\n" + line;
  if (!content.empty()) text += "\n\n" + content;
  if (atBottom && !line.empty()) text += "\n\n" + line;
  return text;
}

/// Compares sets of file names; canonically equivalent names (Unicode UAX #15) are equal.
bool haveSameNames(const std::set<std::string>& a, const std::set<std::string>& b) {
  using Names = std::set<std::string_view, platform::text::CodePointLess>;
  const Names left(a.begin(), a.end());
  const Names right(b.begin(), b.end());
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](std::string_view x, std::string_view y) {
                      return platform::text::compareByCodePoints(x, y) == 0;
                    });
}

std::set<std::string> removedAttachments(const NoteMetadata& before, const NoteMetadata& after) {
  const std::set<std::string> had(before.attachments.begin(), before.attachments.end());
  const std::set<std::string> has(after.attachments.begin(), after.attachments.end());
  std::set<std::string> removed;
  std::set_difference(had.begin(), had.end(), has.begin(), has.end(),
                      std::inserter(removed, removed.end()));
  return removed;
}

}  // namespace

void TaviDatabaseStore::save() {
  if (context().hasChanges()) namingConflicts([&] { context().save(); });
}

void TaviDatabaseStore::namingConflicts(const std::function<void()>& save) {
  try {
    save();
  } catch (const tavimodel::DomainError& error) {
    const bool conflict = error.domain() == tavimodel::NSCocoaErrorDomain &&
                          (error.code() == tavimodel::persistentStoreSaveConflictsError ||
                           error.code() == tavimodel::managedObjectMergeError);
    if (conflict) throw NoteStoreError::concurrentModification();
    throw;
  }
}

void TaviDatabaseStore::updateText(KVNote& note, std::string text, UnlinkedFiles unlinked) {
  note.updateNoteWithText(std::move(text), !preserveModificationDate_, unlinked);
}

WriteResponse TaviDatabaseStore::change(KVNote& note, const std::function<void()>& make,
                                        const RemovalGate* gate) {
  const NoteMetadata before = metadataOf(note);
  make();
  const NoteMetadata after = metadataOf(note);
  if (gate != nullptr) passGate(before, after, *gate);
  save();
  return WriteResponse::difference(before, after);
}

void TaviDatabaseStore::passGate(const NoteMetadata& before, const NoteMetadata& after,
                                 const RemovalGate& gate) {
  if (gate.force) return;
  const std::set<std::string> removed = removedAttachments(before, after);
  const std::set<std::string> expected = gate.expected.value_or(std::set<std::string>());
  if (haveSameNames(removed, expected)) return;
  context().rollback();
  throw NoteStoreError::attachmentRemovalGateFailed(removed, expected);
}

WriteResponse TaviDatabaseStore::rewrite(KVNote& note, std::string text, const RemovalGate& gate) {
  return change(
      note, [&] { updateText(note, std::move(text), UnlinkedFiles::remove); }, &gate);
}

WriteResponse TaviDatabaseStore::editNote(const std::string& id, const EditOperation& edit,
                                          const RemovalGate& gate) {
  KVNote& note = unlockedNoteWithID(id);
  return rewrite(note, TextEditor::applyEdit(edit, note.text(), id), gate);
}

WriteResponse TaviDatabaseStore::editNoteBatch(const std::string& id,
                                               const std::vector<EditOperation>& edits,
                                               const RemovalGate& gate) {
  KVNote& note = unlockedNoteWithID(id);
  return rewrite(note, TextEditor::applyEdits(edits, note.text(), id), gate);
}

WriteResponse TaviDatabaseStore::overwriteNote(const std::string& id, const std::string& text,
                                               const std::optional<std::string>& baseHash,
                                               const RemovalGate& gate) {
  KVNote& note = unlockedNoteWithID(id);
  if (baseHash && ContentHash::of(note.text()) != *baseHash) throw NoteStoreError::hashMismatch();
  return rewrite(note, text, gate);
}

Note TaviDatabaseStore::createNote(const std::string& title,
                                   const std::optional<std::string>& content,
                                   const std::vector<std::string>& tags) {
  KVNote& note = KVNote::noteWithText(composeText(title, content.value_or(""), tags), context());
  save();
  return noteOf(note);
}

Note TaviDatabaseStore::createNoteFromText(const std::string& text,
                                           const std::vector<std::string>& tags) {
  KVNote& note = KVNote::noteWithText(text, context());
  const bool atBottom = TaviPreferences::tagsAtBottom();
  for (const std::string& tag : tags) {
    const std::string name = TagParser::canonicalName(tag);
    if (name.empty()) continue;
    KVNoteTag::getOrCreateTagWithName(name, context()).addTagToNotes({&note}, atBottom);
  }
  save();
  return noteOf(note);
}

KVNote* TaviDatabaseStore::noteMadeWithTitle(const std::string& title, const std::string& text) {
  if (KVNote* note = onlyActiveNoteWithTitle(title)) return note;
  const std::string heading = headingOf(title);
  const std::string shown = titleOf(heading);
  if (!shown.empty()) return shown == title ? nullptr : onlyActiveNoteWithTitle(shown);
  // The heading has no visible text, so the title of the note comes from the text after it.
  for (KVNote* note : activeNotesWithTitle(titleOf(text))) {
    if (!note->encryptedValue() && note->text().starts_with(heading)) return note;
  }
  return nullptr;
}

Note TaviDatabaseStore::createNoteIfAbsent(const std::string& title,
                                           const std::optional<std::string>& content,
                                           const std::vector<std::string>& tags) {
  const std::string text = composeText(title, content.value_or(""), tags);
  if (KVNote* existing = noteMadeWithTitle(title, text)) return noteOf(*existing);
  // Another process may be creating the same note: look again while holding the write lock.
  context().lockForWriting();
  if (KVNote* existing = noteMadeWithTitle(title, text)) {
    Note found = noteOf(*existing);
    context().rollback();
    return found;
  }
  KVNote& note = KVNote::noteWithText(text, context());
  save();
  return noteOf(note);
}

WriteResponse TaviDatabaseStore::insertText(const std::string& id, const std::string& text,
                                            InsertPosition position) {
  KVNote& note = unlockedNoteWithID(id);
  return change(note, [&] {
    const bool atEnd = position == InsertPosition::end;
    const auto insertion = [&](const ZDKAST& tree) {
      return atEnd ? tree.appendText(text) : tree.prependText(text);
    };
    const auto results = insertion(ZDKAST::viewing(note.text()));
    updateText(note, zephyrdown::withOperations(note.text(), results), UnlinkedFiles::keep);
  });
}

}  // namespace tavi

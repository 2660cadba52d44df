#include "platform/model/objects/note.h"

#include <algorithm>
#include <chrono>

#include "platform/markdown/ast.h"
#include "platform/model/objects/managed_object_context.h"
#include "platform/model/objects/note_reader.h"
#include "platform/model/storage/note_texts.h"
#include "platform/system/hashing.h"
#include "platform/text/ordering.h"

namespace tavimodel {
namespace {

double now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(sinceEpoch).count();
}

bool areSame(std::vector<std::string> a, std::vector<std::string> b) {
  std::sort(a.begin(), a.end());
  std::sort(b.begin(), b.end());
  return a == b;
}

/// Whether `files` are those of `ordered`, at the same positions.
bool havePositions(const std::vector<KVNoteFile>& files, const std::vector<KVNoteFile>& ordered) {
  return std::equal(files.begin(), files.end(), ordered.begin(), ordered.end(),
                    [](const KVNoteFile& a, const KVNoteFile& b) {
                      return a.id == b.id && a.position == b.position;
                    });
}

/// Canonically equivalent names are one name (Unicode 3.12, D70).
bool isSameName(std::string_view a, std::string_view b) {
  return platform::text::compareByCodePoints(a, b) == 0;
}

}  // namespace

KVNote* KVNote::noteWithUniqueIdentifier(std::string_view identifier,
                                         ManagedObjectContext& context) {
  auto row = NoteReader(context.reading()).rowWithIdentifier(identifier);
  return row ? &context.noteOf(std::move(*row)) : nullptr;
}

std::vector<KVNote*> KVNote::notesWithTitle(std::string_view title, ManagedObjectContext& context) {
  return context.notesOf(NoteReader(context.reading()).rowsWithTitle(title));
}

KVNote& KVNote::noteWithText(std::string text, ManagedObjectContext& context) {
  NoteRow row;
  row.uniqueIdentifier = platform::system::newUUID();
  row.creationDate = row.modificationDate = now();
  KVNote& note = context.insert(std::move(row));
  const zephyrdown::ZDKTextSummary summary = zephyrdown::ZDKAST::fromMarkdown(text).textSummary();
  note.state_.row.title = summary.title;
  note.state_.row.facts = TextFacts::of(text, summary);
  note.state_.tags = summary.tags;
  note.state_.pinnedInTags.emplace();
  note.state_.files.emplace();
  note.state_.text = std::move(text);
  return note;
}

KVNote::KVNote(ManagedObjectContext& context, NoteRow row) : context_(context) {
  state_.row = std::move(row);
}

template <class Value>
const Value& KVNote::loaded(std::optional<Value> State::*member,
                            Value (NoteReader::*read)(std::int64_t)) {
  if (!(state_.*member)) {
    state_.*member = (NoteReader(context_.reading()).*read)(state_.row.id);
    // What is read after the first change was in the database before it.
    if (committed_) (*committed_).*member = state_.*member;
  }
  return *(state_.*member);
}

const std::string& KVNote::text() {
  return loaded(&State::text, &NoteReader::text);
}

void KVNote::readText(const std::function<void(std::string_view)>& visit) {
  if (state_.text) return visit(*state_.text);
  forEachText(context_.reading(), {state_.row.id},
              [&](std::size_t, std::string_view text) { visit(text); });
}

const TextFacts& KVNote::textFacts() {
  if (!state_.row.facts) state_.row.facts = TextFacts::of(text());
  return *state_.row.facts;
}

const std::vector<std::string>& KVNote::tagsStrings() {
  return loaded(&State::tags, &NoteReader::tags);
}

const std::vector<std::string>& KVNote::pinnedInTags() {
  return loaded(&State::pinnedInTags, &NoteReader::pinnedInTags);
}

const std::vector<KVNoteFile>& KVNote::orderedFiles() {
  return loaded(&State::files, &NoteReader::files);
}

const KVNoteFile* KVNote::attachmentForFilename(std::string_view filename) {
  const KVNoteFile* equivalent = nullptr;
  for (const KVNoteFile& file : orderedFiles()) {
    if (file.filename == filename) return &file;
    if (equivalent == nullptr && file.filename && isSameName(*file.filename, filename)) {
      equivalent = &file;
    }
  }
  return equivalent;
}

std::optional<std::filesystem::path> KVNote::fileURL(const KVNoteFile& file) const {
  if (!file.storedName) return std::nullopt;
  return context_.files_.locate(*file.storedName);
}

bool KVNote::linkNames(std::string_view linked, const KVNoteFile& file) {
  const std::string name = file.filename.value_or("");
  if (linked == name) return true;
  return isSameName(linked, name) && attachmentForFilename(linked)->filename != linked;
}

void KVNote::willChange() {
  if (state_.row.id == 0 || committed_) return;
  committed_ = std::make_unique<State>(state_);
}

void KVNote::updateNoteWithText(std::string text, bool updateModificationDate,
                                UnlinkedFiles unlinked) {
  using zephyrdown::ZDKAST;
  const bool rewritten = this->text() != text;
  const zephyrdown::ZDKTextSummary summary = ZDKAST::fromMarkdown(text).textSummary();
  std::vector<zephyrdown::FileLink> linkedBefore;
  if (rewritten && unlinked == UnlinkedFiles::remove && !orderedFiles().empty()) {
    linkedBefore = ZDKAST::fromMarkdown(this->text()).textSummary().files;
  }
  std::vector<KVNoteFile> files =
      filesAfterChange(orderedFiles(), linkedBefore, summary.files, unlinked);
  const bool agrees = title() == summary.title && areSame(tagsStrings(), summary.tags) &&
                      havePositions(orderedFiles(), files);
  if (!rewritten && agrees) return;
  willChange();
  state_.row.title = summary.title;
  state_.row.facts = TextFacts::of(text, summary);
  if (rewritten && updateModificationDate) state_.row.modificationDate = now();
  state_.tags = summary.tags;
  state_.files = std::move(files);
  state_.text = std::move(text);
}

void KVNote::setFlag(bool NoteRow::*flag, bool value) {
  if (state_.row.*flag == value) return;
  willChange();
  state_.row.*flag = value;
}

void KVNote::trash() {
  setFlag(&NoteRow::trashed, true);
}
void KVNote::restoreFromTrash() {
  setFlag(&NoteRow::trashed, false);
  setFlag(&NoteRow::archived, false);
}
void KVNote::archive() {
  setFlag(&NoteRow::archived, true);
}
void KVNote::unarchive() {
  setFlag(&NoteRow::archived, false);
}
void KVNote::pin() {
  setFlag(&NoteRow::pinned, true);
}
void KVNote::unpin() {
  setFlag(&NoteRow::pinned, false);
}

void KVNote::setTagsStrings(std::vector<std::string> tagNames) {
  if (tagsStrings() == tagNames) return;
  willChange();
  state_.tags = std::move(tagNames);
}

void KVNote::pinInTag(const std::string& tagName) {
  const std::vector<std::string>& pins = pinnedInTags();
  if (std::find(pins.begin(), pins.end(), tagName) != pins.end()) return;
  willChange();
  state_.pinnedInTags->push_back(tagName);
}

void KVNote::unpinInTag(const std::string& tagName) {
  const std::vector<std::string>& pins = pinnedInTags();
  if (std::find(pins.begin(), pins.end(), tagName) == pins.end()) return;
  willChange();
  std::erase(*state_.pinnedInTags, tagName);
}

void KVNote::removeFile(const KVNoteFile& file) {
  const std::int64_t id = file.id;
  orderedFiles();
  willChange();
  std::erase_if(*state_.files, [&](const KVNoteFile& other) { return other.id == id; });
}

}  // namespace tavimodel

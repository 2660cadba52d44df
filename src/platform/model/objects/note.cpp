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

/// Whether `files` equal `ordered`, including their positions.
bool havePositions(const std::vector<KVNoteFile>& files, const std::vector<KVNoteFile>& ordered) {
  return std::equal(files.begin(), files.end(), ordered.begin(), ordered.end(),
                    [](const KVNoteFile& a, const KVNoteFile& b) {
                      return a.id == b.id && a.position == b.position;
                    });
}

/// Whether two names are canonically equivalent (Unicode 3.12, D70).
bool isSameName(std::string_view a, std::string_view b) {
  return platform::text::compareByCodePoints(a, b) == 0;
}

}  // namespace

TextReading TextReading::of(std::string_view text) {
  return of(text, zephyrdown::textSummary(text));
}

TextReading TextReading::of(std::string_view text, zephyrdown::ZDKTextSummary summary) {
  TextFacts facts = TextFacts::of(text, summary);
  return {std::move(summary), std::move(facts)};
}

KVNote* KVNote::noteWithUniqueIdentifier(std::string_view identifier,
                                         ManagedObjectContext& context) {
  auto row = NoteReader(context.reading()).rowWithIdentifier(identifier);
  return row ? &context.noteOf(std::move(*row)) : nullptr;
}

std::vector<KVNote*> KVNote::notesWithTitle(std::string_view title, ManagedObjectContext& context) {
  return context.notesOf(NoteReader(context.reading()).rowsWithTitle(title));
}

KVNote& KVNote::noteWithText(std::string text, ManagedObjectContext& context) {
  const double created = now();
  return noteWithText(std::move(text), {.creationDate = created, .modificationDate = created},
                      context);
}

KVNote& KVNote::noteWithText(std::string text, Origin origin, ManagedObjectContext& context) {
  NoteRow row;
  row.uniqueIdentifier = origin.uniqueIdentifier.empty() ? platform::system::newUUID()
                                                         : std::move(origin.uniqueIdentifier);
  row.creationDate = origin.creationDate;
  row.modificationDate = origin.modificationDate;
  NoteState state;
  const zephyrdown::ZDKTextSummary summary = zephyrdown::textSummary(text);
  row.title = summary.title;
  row.facts = TextFacts::of(text, summary);
  state.row = std::move(row);
  state.tags = summary.tags;
  state.pinnedInTags.emplace();
  state.files.emplace();
  state.text = std::make_shared<const std::string>(std::move(text));
  return context.insert(std::move(state));
}

template <class Value>
const Value& KVNote::loaded(std::optional<Value> NoteState::*member,
                            Value (NoteReader::*read)(std::int64_t)) {
  std::optional<Value>& value = held_.now.*member;
  if (!value) {
    value = (NoteReader(context_.reading()).*read)(held_.now.row.id);
    // A value that is read after the first change is also the committed value.
    if (held_.committed) (*held_.committed).*member = value;
  }
  return *value;
}

std::string KVNote::textOnce() {
  const NoteState& now = held_.now;
  if (now.text) return *now.text;
  const std::int64_t length = now.row.facts ? now.row.facts->length : 0;
  return NoteReader(context_.reading()).text(now.row.id, length);
}

const std::string& KVNote::text() {
  std::shared_ptr<const std::string>& text = held_.now.text;
  if (!text) {
    text = std::make_shared<const std::string>(textOnce());
    if (held_.committed) held_.committed->text = text;
  }
  return *text;
}

void KVNote::readText(const std::function<void(std::string_view)>& visit) {
  if (held_.now.text) return visit(*held_.now.text);
  forEachText(context_.reading(), {held_.now.row.id},
              [&](std::size_t, std::string_view text) { visit(text); });
}

std::optional<LargeText> KVNote::textInParts() {
  const NoteState& now = held_.now;
  if (now.text || (now.row.facts && now.row.facts->length < largeText)) return std::nullopt;
  auto text = LargeText::open(context_.reading(), now.row.id);
  if (text && static_cast<std::int64_t>(text->size()) < largeText) text.reset();
  return text;
}

const TextFacts& KVNote::textFacts() {
  if (!held_.now.row.facts) held_.now.row.facts = TextFacts::of(text());
  return *held_.now.row.facts;
}

const std::vector<std::string>& KVNote::tagsStrings() {
  return loaded(&NoteState::tags, &NoteReader::tags);
}

const std::vector<std::string>& KVNote::pinnedInTags() {
  return loaded(&NoteState::pinnedInTags, &NoteReader::pinnedInTags);
}

const std::vector<KVNoteFile>& KVNote::orderedFiles() {
  return loaded(&NoteState::files, &NoteReader::files);
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
  return context_.files().locate(*file.storedName);
}

bool KVNote::linkNames(std::string_view linked, const KVNoteFile& file) {
  const std::string name = file.filename.value_or("");
  if (linked == name) return true;
  return isSameName(linked, name) && attachmentForFilename(linked)->filename != linked;
}

void KVNote::willChange() {
  if (held_.now.row.id == 0 || held_.committed) return;
  held_.committed = std::make_unique<NoteState>(held_.now);
}

/// Of a large text that another one takes the place of only the digest is kept, so that the two are
/// not in memory at once while the new one is parsed and saved.
void KVNote::dropLargeText() {
  if (static_cast<std::int64_t>(text().size()) < largeText) return;
  willChange();
  NoteState& now = held_.now;
  NoteState* committed = held_.committed.get();
  if (committed != nullptr && committed->text == now.text) {
    committed->textDigest = platform::system::sha256(*now.text);
    committed->text.reset();
  }
  now.text.reset();
  now.textDigest.reset();
}

void KVNote::updateNoteWithText(std::string text, bool updateModificationDate,
                                UnlinkedFiles unlinked) {
  const bool rewritten = this->text() != text;
  std::vector<zephyrdown::FileLink> linkedBefore;
  if (rewritten && unlinked == UnlinkedFiles::remove && !orderedFiles().empty()) {
    linkedBefore = zephyrdown::textSummary(this->text()).files;
  }
  if (rewritten) dropLargeText();
  zephyrdown::ZDKTextSummary summary = zephyrdown::textSummary(text);
  std::vector<KVNoteFile> files = filesAfterChange(orderedFiles(), linkedBefore, summary.files);
  if (!rewritten && agreesWith(summary, files)) return;
  TextFacts facts = TextFacts::of(text, summary);
  adopt({std::move(summary), std::move(facts)}, std::move(files));
  if (!rewritten) return;
  if (updateModificationDate) held_.now.row.modificationDate = now();
  held_.now.text = std::make_shared<const std::string>(std::move(text));
}

void KVNote::updateNoteWithText(std::string text, TextReading reading) {
  const bool rewritten = this->text() != text;
  std::vector<KVNoteFile> files = filesAfterChange(orderedFiles(), {}, reading.summary.files);
  if (!rewritten && agreesWith(reading.summary, files)) return;
  adopt(std::move(reading), std::move(files));
  if (rewritten) held_.now.text = std::make_shared<const std::string>(std::move(text));
}

bool KVNote::agreesWith(const zephyrdown::ZDKTextSummary& summary,
                        const std::vector<KVNoteFile>& files) {
  return title() == summary.title && areSame(tagsStrings(), summary.tags) &&
         havePositions(orderedFiles(), files);
}

void KVNote::adopt(TextReading reading, std::vector<KVNoteFile> files) {
  tagsStrings();  // the save compares them with the new ones
  willChange();
  NoteState& state = held_.now;
  state.row.title = std::move(reading.summary.title);
  state.row.facts = std::move(reading.facts);
  state.tags = std::move(reading.summary.tags);
  state.files = std::move(files);
}

void KVNote::setFlag(bool NoteRow::*flag, bool value) {
  if (held_.now.row.*flag == value) return;
  willChange();
  held_.now.row.*flag = value;
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
  held_.now.tags = std::move(tagNames);
}

void KVNote::pinInTag(const std::string& tagName) {
  const std::vector<std::string>& pins = pinnedInTags();
  if (std::find(pins.begin(), pins.end(), tagName) != pins.end()) return;
  willChange();
  held_.now.pinnedInTags->push_back(tagName);
}

void KVNote::unpinInTag(const std::string& tagName) {
  const std::vector<std::string>& pins = pinnedInTags();
  if (std::find(pins.begin(), pins.end(), tagName) == pins.end()) return;
  willChange();
  std::erase(*held_.now.pinnedInTags, tagName);
}

const KVNoteFile& KVNote::addFile(KVNoteFile file) {
  file.position = static_cast<std::int64_t>(orderedFiles().size());
  willChange();
  held_.now.files->push_back(std::move(file));
  return held_.now.files->back();
}

void KVNote::removeFile(const KVNoteFile& file) {
  const std::int64_t id = file.id;
  orderedFiles();
  willChange();
  std::erase_if(*held_.now.files, [&](const KVNoteFile& other) { return other.id == id; });
}

}  // namespace tavimodel

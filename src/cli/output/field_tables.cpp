#include "cli/output/field_tables.h"

#include <algorithm>

namespace tavi {
namespace {

const NoteMetadata& metadataOf(const NoteMetadata& record) {
  return record;
}
const NoteMetadata& metadataOf(const Note& record) {
  return record.metadata;
}
const NoteMetadata& metadataOf(const SearchResult& record) {
  return record.metadata;
}
const NoteMetadata& metadataOf(const SearchResultWithContent& record) {
  return record.note.metadata;
}
const Note& noteOf(const Note& record) {
  return record;
}
const Note& noteOf(const SearchResultWithContent& record) {
  return record.note;
}

/// Adapts an extractor of NoteMetadata to a Record that contains it.
template <class Record, FieldValue (*extract)(const NoteMetadata&, FieldContext&)>
FieldValue ofMetadata(const Record& record, FieldContext& context) {
  return extract(metadataOf(record), context);
}

using Metadata = const NoteMetadata&;
using Context = FieldContext&;

/// Null if the note is locked: values that depend on its text are unknown.
template <class Value>
FieldValue unlessLocked(Metadata note, const Value& value) {
  return note.locked ? FieldValue() : FieldValue(value);
}

FieldValue id(Metadata note, Context) {
  return note.id;
}
FieldValue title(Metadata note, Context) {
  return note.title;
}
FieldValue locked(Metadata note, Context) {
  return note.locked ? "yes" : "no";
}
FieldValue tags(Metadata note, Context context) {
  return context.writtenTags(note.tags);
}
FieldValue hash(Metadata note, Context) {
  return unlessLocked(note, std::string_view(note.contentHash));
}
FieldValue length(Metadata note, Context) {
  return unlessLocked(note, note.contentLength);
}
FieldValue created(Metadata note, Context) {
  return note.created;
}
FieldValue modified(Metadata note, Context) {
  return note.modified;
}
FieldValue pins(Metadata note, Context context) {
  return context.displayedPins(note.pins);
}
FieldValue location(Metadata note, Context) {
  return rawText(note.location);
}
FieldValue todos(Metadata note, Context) {
  return unlessLocked(note, note.todos);
}
FieldValue done(Metadata note, Context) {
  return unlessLocked(note, note.done);
}
FieldValue attachments(Metadata note, Context context) {
  return unlessLocked(note, context.list(note.attachments));
}

constexpr bool detail = true;

template <class Record>
constexpr std::array<FieldDescriptor<Record>, 13> metadataFields{{
    {"id", ofMetadata<Record, id>},
    {"title", ofMetadata<Record, title>},
    {"locked", ofMetadata<Record, locked>},
    {"tags", ofMetadata<Record, tags>},
    {"hash", ofMetadata<Record, hash>, detail},
    {"length", ofMetadata<Record, length>, detail},
    {"created", ofMetadata<Record, created>},
    {"modified", ofMetadata<Record, modified>},
    {"pins", ofMetadata<Record, pins>, detail},
    {"location", ofMetadata<Record, location>},
    {"todos", ofMetadata<Record, todos>, detail},
    {"done", ofMetadata<Record, done>, detail},
    {"attachments", ofMetadata<Record, attachments>, detail},
}};

template <class Record>
FieldValue content(const Record& record, Context) {
  const Note& note = noteOf(record);
  return unlessLocked(note.metadata, std::string_view(note.content));
}

template <class Record>
FieldValue matches(const Record& record, Context) {
  return record.matchCount;
}

/// The fields of the metadata, followed by further fields.
template <class Record, std::size_t count>
constexpr auto metadataFieldsAnd(const FieldDescriptor<Record> (&further)[count]) {
  std::array<FieldDescriptor<Record>, 13 + count> fields{};
  std::ranges::copy(further, std::ranges::copy(metadataFields<Record>, fields.begin()).out);
  return fields;
}

constexpr auto noteFields = metadataFieldsAnd<Note>({{"content", content<Note>}});
constexpr auto resultFields = metadataFieldsAnd<SearchResult>({{"matches", matches<SearchResult>}});
constexpr auto resultWithContentFields = metadataFieldsAnd<SearchResultWithContent>(
    {{"content", content<SearchResultWithContent>}, {"matches", matches<SearchResultWithContent>}});

constexpr std::array<FieldDescriptor<SearchMatch>, 2> matchFields{{
    {"offset", [](const SearchMatch& match, Context) -> FieldValue { return match.byteOffset; }},
    {"snippet", [](const SearchMatch& match, Context) -> FieldValue { return match.snippet; }},
}};

constexpr std::array<FieldDescriptor<AttachmentInfo>, 2> attachmentFields{{
    {"filename", [](const AttachmentInfo& info, Context) -> FieldValue { return info.filename; }},
    {"size", [](const AttachmentInfo& info, Context) -> FieldValue { return info.size; }},
}};

constexpr std::array<FieldDescriptor<TagRecord>, 1> tagFields{{
    {"tag", [](const TagRecord& record, Context) -> FieldValue { return record.tag; }},
}};

constexpr std::array<FieldDescriptor<PinRecord>, 1> pinFields{{
    {"pin", [](const PinRecord& record, Context) -> FieldValue { return record.pin; }},
}};

}  // namespace

template <>
FieldTable<NoteMetadata> fieldTable() {
  return metadataFields<NoteMetadata>;
}
template <>
FieldTable<Note> fieldTable() {
  return noteFields;
}
template <>
FieldTable<SearchResult> fieldTable() {
  return resultFields;
}
template <>
FieldTable<SearchResultWithContent> fieldTable() {
  return resultWithContentFields;
}
template <>
FieldTable<SearchMatch> fieldTable() {
  return matchFields;
}
template <>
FieldTable<AttachmentInfo> fieldTable() {
  return attachmentFields;
}
template <>
FieldTable<TagRecord> fieldTable() {
  return tagFields;
}
template <>
FieldTable<PinRecord> fieldTable() {
  return pinFields;
}

}  // namespace tavi

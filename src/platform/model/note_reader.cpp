#include "platform/model/note_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <unordered_map>

#include "platform/text/folding.h"

namespace tavimodel {
namespace {

/// Where a walk over a whole relation is cheaper than a look-up for each note.
constexpr std::size_t walkFrom = 400;

std::vector<std::string> names(sqlite::Query query, std::int64_t note) {
  query.bind(1, note);
  std::vector<std::string> result;
  while (query.step()) result.emplace_back(query.text(0));
  return result;
}

KVNoteFile readFile(const sqlite::Query& query, int first) {
  KVNoteFile file;
  file.id = query.integer(first);
  if (!query.isNull(first + 1)) file.filename = query.text(first + 1);
  file.fileSizeValue = query.integer(first + 2);
  file.position = query.integer(first + 3);
  if (!query.isNull(first + 4)) file.storedName = query.text(first + 4);
  return file;
}

/// The notes of a bulk load by their ids, to which the rows of a relation are handed out.
class ByID {
 public:
  explicit ByID(const std::vector<KVNote*>& notes, std::int64_t (*idOf)(const KVNote&)) {
    entries_.reserve(notes.size());
    for (KVNote* note : notes) entries_.push_back({idOf(*note), note});
    const auto less = [](const Entry& a, const Entry& b) { return a.id < b.id; };
    if (!std::is_sorted(entries_.begin(), entries_.end(), less)) {
      std::sort(entries_.begin(), entries_.end(), less);
    }
  }

  bool empty() const { return entries_.empty(); }

  /// Ids must come ascending; each call goes on where the last one stopped.
  KVNote* ascending(std::int64_t id) {
    while (next_ < entries_.size() && entries_[next_].id < id) ++next_;
    return next_ < entries_.size() && entries_[next_].id == id ? entries_[next_].note : nullptr;
  }

  std::string ids() const {
    std::vector<std::int64_t> list;
    list.reserve(entries_.size());
    for (const Entry& entry : entries_) list.push_back(entry.id);
    return jsonArray(list);
  }

  bool many() const { return entries_.size() >= walkFrom; }

 private:
  struct Entry {
    std::int64_t id;
    KVNote* note;
  };
  std::vector<Entry> entries_;
  std::size_t next_ = 0;
};

/// Rows of `relation`, ordered by note: of all notes when there are many, else of those listed.
sqlite::Query relationRows(sqlite::Connection& connection, std::string_view columns,
                           std::string_view relation, std::string_view order, bool many) {
  return connection.query(fmt::format("SELECT {0} FROM {1} {2} ORDER BY {3}", columns, relation,
                                      many ? "" : "WHERE note IN (SELECT value FROM json_each(?1))",
                                      order));
}

}  // namespace

std::string jsonArray(const std::vector<std::int64_t>& ids) {
  fmt::memory_buffer buffer;
  buffer.push_back('[');
  for (std::size_t i = 0; i < ids.size(); ++i) {
    if (i > 0) buffer.push_back(',');
    const fmt::format_int digits(ids[i]);
    buffer.append(digits.data(), digits.data() + digits.size());
  }
  buffer.push_back(']');
  return fmt::to_string(buffer);
}

std::optional<NoteRow> NoteReader::rowWithIdentifier(std::string_view identifier) {
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.uniqueIdentifier = ?1", noteRowColumns));
  query.bind(1, identifier);
  if (!query.step()) return std::nullopt;
  return readNoteRow(query);
}

std::optional<NoteRow> NoteReader::rowWithID(std::int64_t id) {
  sqlite::Query query = connection_.query(
      fmt::format("SELECT {} FROM noteSummary s WHERE s.note = ?1", noteRowColumns));
  query.bind(1, id);
  if (!query.step()) return std::nullopt;
  return readNoteRow(query);
}

std::vector<NoteRow> NoteReader::rowsWithTitle(std::string_view title) {
  // A key that is not known is one whose title SQL could not fold.
  sqlite::Query query = connection_.query(fmt::format(
      "SELECT {} FROM noteSummary s WHERE s.titleKey = ?1 OR s.titleKey IS NULL ORDER BY s.note",
      noteRowColumns));
  const std::string key = platform::text::foldedForSearch(title);
  query.bind(1, key);
  std::vector<NoteRow> rows;
  while (query.step()) {
    NoteRow row = readNoteRow(query);
    if (platform::text::foldedForSearch(row.title.value_or("")) == key)
      rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<NoteRow> NoteReader::rowsWithIDs(const std::vector<std::int64_t>& ids) {
  sqlite::Query query =
      connection_.query(fmt::format("SELECT {} FROM json_each(?1) wanted CROSS JOIN noteSummary s "
                                    "ON s.note = wanted.value",
                                    noteRowColumns));
  const std::string list = jsonArray(ids);
  query.bind(1, list);
  std::vector<NoteRow> rows;
  rows.reserve(ids.size());
  while (query.step()) rows.push_back(readNoteRow(query));
  return rows;
}

std::string NoteReader::text(std::int64_t note) {
  sqlite::Query query = connection_.query("SELECT text FROM note WHERE id = ?1");
  query.bind(1, note);
  return query.step() ? std::string(query.text(0)) : std::string();
}

std::vector<std::string> NoteReader::tags(std::int64_t note) {
  return names(connection_.query("SELECT tag.title FROM noteTag JOIN tag ON tag.id = noteTag.tag "
                                 "WHERE noteTag.note = ?1"),
               note);
}

std::vector<std::string> NoteReader::pinnedInTags(std::int64_t note) {
  return names(
      connection_.query("SELECT tag.title FROM pinnedInTag "
                        "JOIN tag ON tag.id = pinnedInTag.tag WHERE pinnedInTag.note = ?1"),
      note);
}

std::vector<KVNoteFile> NoteReader::files(std::int64_t note) {
  sqlite::Query query = connection_.query(
      "SELECT id, filename, fileSize, position, storedName FROM file WHERE note = ?1 "
      "ORDER BY position, id");
  query.bind(1, note);
  std::vector<KVNoteFile> result;
  while (query.step()) result.push_back(readFile(query, 0));
  return result;
}

void NoteReader::loadTags(const std::vector<KVNote*>& notes) {
  std::vector<KVNote*> wanted;
  std::copy_if(notes.begin(), notes.end(), std::back_inserter(wanted),
               [](const KVNote* note) { return !note->state_.tags; });
  ByID byID(wanted, [](const KVNote& note) { return note.state_.row.id; });
  if (byID.empty()) return;
  for (KVNote* note : wanted) note->state_.tags.emplace();

  // Titles apart from the relation: a tag's name is read once and not once a note.
  std::unordered_map<std::int64_t, std::string> titles;
  sqlite::Query tags = connection_.query("SELECT id, title FROM tag");
  while (tags.step()) titles.emplace(tags.integer(0), tags.text(1));

  sqlite::Query rows = relationRows(connection_, "note, tag", "noteTag", "note, tag", byID.many());
  const std::string ids = byID.many() ? std::string() : byID.ids();
  if (!byID.many()) rows.bind(1, ids);
  while (rows.step()) {
    KVNote* note = byID.ascending(rows.integer(0));
    if (note == nullptr) continue;
    const auto title = titles.find(rows.integer(1));
    if (title != titles.end()) note->state_.tags->push_back(title->second);
  }
}

void NoteReader::loadPins(const std::vector<KVNote*>& notes) {
  std::vector<KVNote*> wanted;
  std::copy_if(notes.begin(), notes.end(), std::back_inserter(wanted),
               [](const KVNote* note) { return !note->state_.pinnedInTags; });
  ByID byID(wanted, [](const KVNote& note) { return note.state_.row.id; });
  if (byID.empty()) return;
  for (KVNote* note : wanted) note->state_.pinnedInTags.emplace();
  sqlite::Query rows = relationRows(connection_, "note, (SELECT title FROM tag WHERE id = tag)",
                                    "pinnedInTag", "note", byID.many());
  const std::string ids = byID.many() ? std::string() : byID.ids();
  if (!byID.many()) rows.bind(1, ids);
  while (rows.step()) {
    KVNote* note = byID.ascending(rows.integer(0));
    if (note != nullptr && !rows.isNull(1)) note->state_.pinnedInTags->emplace_back(rows.text(1));
  }
}

void NoteReader::loadFiles(const std::vector<KVNote*>& notes) {
  std::vector<KVNote*> wanted;
  std::copy_if(notes.begin(), notes.end(), std::back_inserter(wanted),
               [](const KVNote* note) { return !note->state_.files; });
  ByID byID(wanted, [](const KVNote& note) { return note.state_.row.id; });
  if (byID.empty()) return;
  for (KVNote* note : wanted) note->state_.files.emplace();
  sqlite::Query rows =
      relationRows(connection_, "note, id, filename, fileSize, position, storedName", "file",
                   "note, position, id", byID.many());
  const std::string ids = byID.many() ? std::string() : byID.ids();
  if (!byID.many()) rows.bind(1, ids);
  while (rows.step()) {
    KVNote* note = byID.ascending(rows.integer(0));
    if (note != nullptr) note->state_.files->push_back(readFile(rows, 1));
  }
}

void NoteReader::loadFacts(const std::vector<KVNote*>& notes) {
  std::vector<KVNote*> unknown;
  std::vector<std::int64_t> ids;
  for (KVNote* note : notes) {
    if (note->state_.row.facts || note->state_.row.encrypted) continue;
    unknown.push_back(note);
    ids.push_back(note->state_.row.id);
  }
  if (ids.empty()) return;
  forEachText(ids, [&](std::size_t index, std::string_view text) {
    unknown[index]->state_.row.facts = TextFacts::of(text);
  });
}

void NoteReader::forEachText(const std::vector<std::int64_t>& ids,
                             const std::function<void(std::size_t, std::string_view)>& visit) {
  sqlite::Query query = connection_.query(
      "SELECT note.text FROM json_each(?1) wanted CROSS JOIN note ON note.id = wanted.value");
  const std::string list = jsonArray(ids);
  query.bind(1, list);
  for (std::size_t index = 0; query.step(); ++index) visit(index, query.text(0));
}

}  // namespace tavimodel

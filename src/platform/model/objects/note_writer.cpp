#include "platform/model/objects/note_writer.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "platform/model/objects/errors.h"
#include "platform/model/objects/large_text.h"
#include "platform/model/storage/note_links.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

using platform::system::SHA256Digest;
using Names = std::vector<std::string>;

/// Limit of ancestors that get rows. Only another program can have written more deeply nested tags.
constexpr int mostAncestors = 100;

/// The names in `from` that are not in `without`.
std::vector<std::string_view> difference(const Names& from, const Names& without) {
  const std::unordered_set<std::string_view> excluded(without.begin(), without.end());
  std::vector<std::string_view> result;
  for (const std::string& name : from) {
    if (!excluded.contains(name)) result.push_back(name);
  }
  return result;
}

const std::vector<std::string> none;

const std::vector<std::string>& orNone(const std::optional<std::vector<std::string>>& names) {
  return names ? *names : none;
}

std::optional<SHA256Digest> digestIfLarge(const NoteState& read) {
  const bool isLarge = read.text && static_cast<std::int64_t>(read.text->size()) >= largeText;
  return isLarge ? platform::system::sha256(*read.text) : read.textDigest;
}

/// Whether `updateAttributes` has nothing to do.
bool sameAttributes(const NoteRow& a, const NoteRow& b) {
  return a.title == b.title && a.trashed == b.trashed && a.archived == b.archived &&
         a.pinned == b.pinned;
}

}  // namespace

void NoteWriter::checkVersion(const NoteState& read) {
  // The text is compared too: a version is the triggers' work, and a program may have turned
  // triggers off. A text that is absent was read as the empty one.
  const std::optional<SHA256Digest> digest = digestIfLarge(read);
  const bool isShort = read.text && !read.text->empty() && !digest;
  sqlite::Query query = connection_.query(
      isShort ? "SELECT s.version, CAST(note.text AS TEXT) = ?2 FROM noteSummary s "
                "JOIN note ON note.id = s.note WHERE s.note = ?1"
              : "SELECT s.version, 1 FROM noteSummary s "
                "JOIN note ON note.id = s.note WHERE s.note = ?1");
  query.bind(1, read.row.id);
  if (isShort) query.bind(2, *read.text);
  if (!query.step()) {
    throw DomainError(NSCocoaErrorDomain, managedObjectMergeError, "The note has been removed.");
  }
  const bool sameText = digest ? digestOfLargeText(connection_, read.row.id) == digest
                               : query.integer(1) != 0;  // 0 for NULL
  if (query.integer(0) != read.row.version || !sameText) {
    throw DomainError(NSCocoaErrorDomain, persistentStoreSaveConflictsError,
                      "The note has been changed by another process.");
  }
}

void NoteWriter::insert(NoteState& note) {
  NoteRow& row = note.row;
  sqlite::Query query = connection_.query(
      "INSERT INTO note (uniqueIdentifier, title, creationDate, modificationDate, trashed, "
      "archived, "
      "pinned, text) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
  query.bind(1, row.uniqueIdentifier);
  query.bind(2, *row.title);
  query.bind(3, row.creationDate).bind(4, row.modificationDate);
  query.bind(5, std::int64_t{row.trashed}).bind(6, std::int64_t{row.archived});
  query.bind(7, std::int64_t{row.pinned});
  query.bind(8, *note.text);
  query.run();
  row.id = connection_.lastInsertedRow();
  writeFacts(row);
  writeTags(row.id, orNone(note.tags), none);
  writePins(row.id, orNone(note.pinnedInTags), none);
  if (note.files) writeFiles(note, {});
}

void NoteWriter::update(NoteState& now, const NoteState& before) {
  updateAttributes(now.row, before.row);
  if (now.text != before.text) {
    if (before.textDigest) clearText(now.row.id);
    sqlite::Query query =
        connection_.query("UPDATE note SET text = ?2, modificationDate = ?3 WHERE id = ?1");
    query.bind(1, now.row.id).bind(2, *now.text).bind(3, now.row.modificationDate).run();
    writeFacts(now.row);
  } else {
    sqlite::Query query = connection_.query(
        "UPDATE note SET modificationDate = ?2 WHERE id = ?1 AND modificationDate IS NOT ?2");
    query.bind(1, now.row.id).bind(2, now.row.modificationDate).run();
    sqlite::Query version = connection_.query("SELECT version FROM noteSummary WHERE note = ?1");
    version.bind(1, now.row.id).step();
    now.row.version = version.integer(0);
  }
  if (now.tags) writeTags(now.row.id, *now.tags, orNone(before.tags));
  if (now.pinnedInTags) writePins(now.row.id, *now.pinnedInTags, orNone(before.pinnedInTags));
  if (now.files) writeFiles(now, before.files ? *before.files : std::vector<KVNoteFile>{});
}

bool NoteWriter::differInText(const NoteState& now, const NoteState& before) {
  const auto sameFile = [](const KVNoteFile& a, const KVNoteFile& b) {
    return a.id == b.id && a.position == b.position;
  };
  return now.text != before.text && !before.textDigest && sameAttributes(now.row, before.row) &&
         now.row.modificationDate == before.row.modificationDate && !now.row.encrypted &&
         !now.row.permanentlyDeleted && now.pinnedInTags == before.pinnedInTags && now.files &&
         before.files && std::ranges::equal(*now.files, *before.files, sameFile);
}

bool NoteWriter::updateText(NoteState& now, const NoteState& before, bool staysIndexed) {
  const NoteRow& row = now.row;
  const TextFacts& facts = *row.facts;
  std::int64_t version = 0;
  sqlite3_randomness(sizeof version, &version);
  sqlite::Query summary = connection_.query(fmt::format(
      "UPDATE noteSummary SET version = ?3, textDigest = ?4, textLength = ?5, "
      "todoIncomplete = ?6, todoCompleted = ?7, features = ?8{} "
      "WHERE note = ?1 AND version = ?2 AND textDigest IS NOT NULL{} "
      "AND EXISTS (SELECT 1 FROM note WHERE id = ?1)",
      staysIndexed ? "" : ", searchRow = NULL", staysIndexed ? " AND searchRow = ?9" : ""));
  summary.bind(1, row.id).bind(2, before.row.version).bind(3, version);
  summary.bind(4, facts.digest).bind(5, facts.length).bind(6, facts.todoIncomplete);
  summary.bind(7, facts.todoCompleted).bind(8, facts.features);
  if (staysIndexed) summary.bind(9, before.row.searchRow);
  summary.run();
  if (connection_.rowsChanged() == 0) return false;
  now.row.version = version;
  if (!staysIndexed) now.row.searchRow.reset();
  connection_.query("UPDATE note SET text = ?2 WHERE id = ?1")
      .bind(1, row.id)
      .bind(2, *now.text)
      .run();
  connection_.query("DELETE FROM noteLink WHERE note = ?1").bind(1, row.id).run();
  storeLinks(connection_, row.id, facts.links);
  if (now.tags) writeTags(row.id, *now.tags, orNone(before.tags));
  return true;
}

/// Takes a large text out before another one is put in. In one statement SQLite would hold the new
/// text in a row, the old one for the triggers, and its pages to undo the statement, all at once.
void NoteWriter::clearText(std::int64_t note) {
  connection_.query("UPDATE note SET text = '' WHERE id = ?1").bind(1, note).run();
}

void NoteWriter::updateAttributes(const NoteRow& now, const NoteRow& before) {
  if (sameAttributes(now, before)) return;
  sqlite::Query query = connection_.query(
      "UPDATE note SET title = ?2, trashed = ?3, archived = ?4, pinned = ?5 WHERE id = ?1");
  query.bind(1, now.id).bind(2, now.title).bind(3, std::int64_t{now.trashed});
  query.bind(4, std::int64_t{now.archived}).bind(5, std::int64_t{now.pinned}).run();
}

void NoteWriter::writeFacts(NoteRow& row) {
  const TextFacts& facts = *row.facts;
  connection_
      .query(
          "UPDATE noteSummary SET textDigest = ?2, textLength = ?3, todoIncomplete = ?4, "
          "todoCompleted = ?5, features = ?6 WHERE note = ?1")
      .bind(1, row.id)
      .bind(2, facts.digest)
      .bind(3, facts.length)
      .bind(4, facts.todoIncomplete)
      .bind(5, facts.todoCompleted)
      .bind(6, facts.features)
      .run();
  const std::string key = platform::text::foldedForSearch(row.title.value_or(""));
  bool lacksKey = false;
  {
    // RETURNING would take longer, as it creates a temporary table.
    sqlite::Query query = connection_.query(
        "SELECT version, titleKey IS NULL AND title IS NOT ?2 COLLATE NOCASE "
        "FROM noteSummary WHERE note = ?1");
    query.bind(1, row.id).bind(2, key).step();
    row.version = query.integer(0);
    lacksKey = query.integer(1) != 0;
  }
  if (!row.encrypted && !row.permanentlyDeleted) storeLinks(connection_, row.id, facts.links);
  if (!lacksKey) return;
  sqlite::Query query = connection_.query("UPDATE noteSummary SET titleKey = ?2 WHERE note = ?1");
  query.bind(1, row.id).bind(2, key).run();
}

void NoteWriter::writeTags(std::int64_t note, const Names& now, const Names& before) {
  writeRelation(note, now, before, "DELETE FROM noteTag WHERE note = ?1 AND tag = ?2",
                "INSERT OR IGNORE INTO noteTag VALUES (?1, ?2)");
}

void NoteWriter::writePins(std::int64_t note, const Names& now, const Names& before) {
  writeRelation(note, now, before, "DELETE FROM pinnedInTag WHERE note = ?1 AND tag = ?2",
                "INSERT OR IGNORE INTO pinnedInTag VALUES (?1, ?2)");
}

void NoteWriter::writeRelation(std::int64_t note, const Names& now, const Names& before,
                               const char* unlink, const char* link) {
  for (const std::string_view name : difference(before, now)) {
    if (const auto tag = tagID(name)) connection_.query(unlink).bind(1, note).bind(2, *tag).run();
    touchedTags_.emplace(name);
  }
  for (const std::string_view name : difference(now, before)) {
    connection_.query(link).bind(1, note).bind(2, tagIDMade(name)).run();
  }
}

void NoteWriter::writeFiles(NoteState& note, const std::vector<KVNoteFile>& before) {
  std::vector<KVNoteFile>& now = *note.files;
  std::unordered_map<std::int64_t, std::int64_t> positions;  // of the previous files, by id
  for (const KVNoteFile& file : before) positions.emplace(file.id, file.position);
  for (KVNoteFile& file : now) {
    if (file.id == 0) {
      insertFile(note.row.id, file);
      continue;
    }
    const auto old = positions.extract(file.id);
    if (!old.empty() && old.mapped() == file.position) continue;
    sqlite::Query query = connection_.query("UPDATE file SET position = ?2 WHERE id = ?1");
    query.bind(1, file.id).bind(2, file.position).run();
  }
  for (const auto& [id, position] : positions) {
    connection_.query("DELETE FROM file WHERE id = ?1").bind(1, id).run();
  }
}

void NoteWriter::insertFile(std::int64_t note, KVNoteFile& file) {
  sqlite::Query query = connection_.query(
      "INSERT INTO file (note, filename, fileSize, position, storedName) "
      "VALUES (?1, ?2, ?3, ?4, ?5)");
  query.bind(1, note).bind(2, *file.filename);
  query.bind(3, file.fileSizeValue).bind(4, file.position);
  query.bind(5, *file.storedName).run();
  file.id = connection_.lastInsertedRow();
}

std::optional<std::int64_t> NoteWriter::tagID(std::string_view name) {
  if (const auto known = tagIDs_.find(name); known != tagIDs_.end()) return known->second;
  sqlite::Query find = connection_.query("SELECT id FROM tag WHERE title = ?1");
  find.bind(1, name);
  if (!find.step()) return std::nullopt;
  return tagIDs_.emplace(name, find.integer(0)).first->second;
}

std::int64_t NoteWriter::tagIDMade(std::string_view name) {
  if (const auto known = tagID(name)) return *known;
  connection_.query("INSERT INTO tag (title) VALUES (?1)").bind(1, name).run();
  const std::int64_t id = connection_.lastInsertedRow();
  for (int level = 0; level < mostAncestors; ++level) {
    const std::size_t slash = name.rfind('/');
    if (slash == name.npos) break;
    name = name.substr(0, slash);
    if (tagID(name)) break;
    connection_.query("INSERT INTO tag (title) VALUES (?1)").bind(1, name).run();
  }
  return id;
}

void NoteWriter::removeDeadTags() {
  tagIDs_.clear();
  // "0" is the character after "/", so the range has the names of the descendants.
  constexpr const char* removeIfDead =
      "DELETE FROM tag WHERE title = ?1 "
      "AND NOT EXISTS (SELECT 1 FROM noteTag WHERE noteTag.tag = tag.id) "
      "AND NOT EXISTS (SELECT 1 FROM pinnedInTag WHERE pinnedInTag.tag = tag.id) "
      "AND NOT EXISTS (SELECT 1 FROM tag child "
      "WHERE child.title > tag.title || '/' AND child.title < tag.title || '0')";
  for (std::string name : touchedTags_) {
    for (int level = 0; level <= mostAncestors; ++level) {
      connection_.query(removeIfDead).bind(1, name).run();
      const std::size_t slash = name.rfind('/');
      if (slash == std::string::npos) break;
      name.resize(slash);
    }
  }
  touchedTags_.clear();
}

}  // namespace tavimodel

#include <filesystem>
#include <fstream>

#include <fmt/format.h>
#include <nettle/sha2.h>

#include <array>
#include <ctime>

#include "common/database.h"
#include "writers.h"

namespace corpus {
namespace {

using bench::Statement;

// The columns that a list shows are in one table, with the tags as they are printed; the texts are
// in another. The file is in WAL mode, like one that several programs share.
constexpr const char* layout = R"sql(
PRAGMA journal_mode = WAL;
PRAGMA synchronous = OFF;
BEGIN;
CREATE TABLE note (
  id INTEGER PRIMARY KEY,
  location INTEGER NOT NULL,   -- 0: notes, 1: trash, 2: archive
  pinned INTEGER NOT NULL,
  modified REAL NOT NULL,
  created REAL NOT NULL,
  identifier TEXT NOT NULL,
  title TEXT NOT NULL,
  tags TEXT NOT NULL           -- "#a,#b"
);
CREATE INDEX noteByIdentifier ON note (identifier);
CREATE INDEX noteByPlace ON note (location, pinned DESC, modified DESC);
CREATE TABLE body (id INTEGER PRIMARY KEY, text TEXT NOT NULL);
-- The metadata as JSON, as an MCP client receives it.
CREATE TABLE told (id INTEGER PRIMARY KEY, json TEXT NOT NULL);
CREATE TABLE noteTag (tag TEXT NOT NULL, note INTEGER NOT NULL, PRIMARY KEY (tag, note))
  WITHOUT ROWID;
CREATE VIRTUAL TABLE trigrams USING fts5 (
  text, content='', detail=none, columnsize=0, tokenize='trigram');
)sql";

std::string shownTags(const Note& note, const Tags& tags) {
  std::string shown;
  for (const std::size_t place : note.tags) {
    if (!shown.empty()) shown += ',';
    shown += '#' + tags.names()[place];
  }
  return shown;
}

std::string contentHash(const std::string& text) {
  sha256_ctx context;
  sha256_init(&context);
  sha256_update(&context, text.size(), reinterpret_cast<const std::uint8_t*>(text.data()));
  std::array<std::uint8_t, 4> head{};
  sha256_digest(&context, head.size(), head.data());
  return fmt::format("{:02x}{:02x}{:02x}{:x}", head[0], head[1], head[2], head[3] >> 4);
}

std::size_t occurrences(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
  return count;
}

std::string isoDate(double seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::array<char, 32> text{};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", std::gmtime(&time));
  return text.data();
}

/// The metadata as JSON with sorted keys. The only character of names and titles in the corpus that
/// needs escaping is the slash of nested tags.
std::string json(const Note& note, const Tags& tags) {
  constexpr std::array locations{"notes", "trash", "archive"};
  const auto quoted = [&](std::size_t tag, std::string_view mark) {
    std::string name = '"' + std::string(mark) + tags.names()[tag] + '"';
    for (std::size_t at = name.find('/'); at != name.npos; at = name.find('/', at + 2)) {
      name.insert(at, 1, '\\');
    }
    return name;
  };
  std::string names;
  for (const std::size_t tag : note.tags) names += (names.empty() ? "" : ",") + quoted(tag, "");
  std::string pins = note.pinned ? "\"global\"" : "";
  if (note.pinned && !note.tags.empty()) pins += ',' + quoted(note.tags.front(), "#");
  return fmt::format(
      R"({{"attachments":[],"contentHash":"{}","contentLength":{},"created":"{}","done":{},)"
      R"("id":"{}","location":"{}","locked":false,"modified":"{}","pins":[{}],"tags":[{}],)"
      R"("title":"{}","todos":{}}})",
      contentHash(note.text), note.text.size(), isoDate(note.created),
      occurrences(note.text, "- [x] "), note.uniqueIdentifier,
      locations[static_cast<std::size_t>(note.location)], isoDate(note.modified), pins, names,
      note.title, occurrences(note.text, "- [ ] "));
}

}  // namespace

void writeFloorFile(const Notes& notes, std::size_t hugeNoteBytes, const std::string& path) {
  std::filesystem::remove(path);
  std::ofstream(path).flush();
  bench::Database database(path.c_str());
  database.execute(layout);
  Statement row(database, "INSERT INTO note VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
  Statement body(database, "INSERT INTO body VALUES (?1, ?2)");
  Statement told(database, "INSERT INTO told VALUES (?1, ?2)");
  Statement noteTag(database, "INSERT INTO noteTag VALUES (?1, ?2)");
  Statement trigrams(database, "INSERT INTO trigrams (rowid, text) VALUES (?1, ?2)");
  std::int64_t id = 0;
  forEachNote(notes, hugeNoteBytes, [&](const Note& note) {
    ++id;
    const std::string shown = shownTags(note, notes.tags());
    row.bind(1, id).bind(2, static_cast<std::int64_t>(note.location));
    row.bind(3, std::int64_t{note.pinned}).bind(4, note.modified).bind(5, note.created);
    row.bind(6, std::string_view(note.uniqueIdentifier)).bind(7, std::string_view(note.title));
    row.bind(8, std::string_view(shown)).run();
    const std::string noteJSON = json(note, notes.tags());
    told.bind(1, id).bind(2, std::string_view(noteJSON)).run();
    body.bind(1, id).bind(2, std::string_view(note.text)).run();
    for (const std::size_t tag : note.tags) {
      noteTag.bind(1, std::string_view(notes.tags().names()[tag])).bind(2, id).run();
    }
    trigrams.bind(1, id).bind(2, std::string_view(note.text)).run();
  });
  database.execute(
      "INSERT INTO trigrams (trigrams) VALUES ('optimize'); COMMIT;"
      "PRAGMA wal_checkpoint(TRUNCATE); VACUUM; PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace corpus

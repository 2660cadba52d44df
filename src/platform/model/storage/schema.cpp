#include "platform/model/storage/schema.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/model/storage/sqlite.h"
#include "platform/model/storage/text_facts.h"

// The database is shared with programs that know only the first group of tables and write them with
// plain SQL. So triggers maintain this program's own tables. They use only built-in functions and
// ordinary tables, since a client may lack FTS5 or have trusted_schema off. What SQL cannot compute
// is set to NULL ("unknown"): readers derive it in memory, and the next writer stores it.
//
// Booleans are 0 or 1. Dates are seconds since 1970-01-01 UTC, NULL when unknown.

namespace tavimodel {
namespace {

constexpr const char* createTables = R"sql(
CREATE TABLE note (
  id INTEGER PRIMARY KEY,
  uniqueIdentifier TEXT NOT NULL UNIQUE DEFAULT (  -- a random UUID
    printf('%s-%s-4%.3s-A%.3s-%s', hex(randomblob(4)), hex(randomblob(2)), hex(randomblob(2)),
      hex(randomblob(2)), hex(randomblob(6)))),
  title TEXT,
  creationDate REAL,
  modificationDate REAL,
  trashed INTEGER NOT NULL DEFAULT 0 CHECK (trashed IN (0, 1)),
  archived INTEGER NOT NULL DEFAULT 0 CHECK (archived IN (0, 1)),
  permanentlyDeleted INTEGER DEFAULT NULL CHECK (permanentlyDeleted IN (0, 1)),
  pinned INTEGER NOT NULL DEFAULT 0 CHECK (pinned IN (0, 1)),
  encrypted INTEGER NOT NULL DEFAULT 0 CHECK (encrypted IN (0, 1)),
  readOnly INTEGER NOT NULL DEFAULT 0 CHECK (readOnly IN (0, 1)),
  text TEXT                          -- Markdown; last, so that other columns are read without it
);

CREATE TABLE tag (
  id INTEGER PRIMARY KEY,
  title TEXT NOT NULL UNIQUE         -- canonical name; the ancestors of a nested tag are rows too
);

CREATE TABLE noteTag (
  note INTEGER NOT NULL,
  tag INTEGER NOT NULL,
  PRIMARY KEY (note, tag)
) WITHOUT ROWID;
CREATE INDEX noteTagByTag ON noteTag (tag, note);

CREATE TABLE pinnedInTag (
  note INTEGER NOT NULL,
  tag INTEGER NOT NULL,
  PRIMARY KEY (note, tag)
) WITHOUT ROWID;
CREATE INDEX pinnedInTagByTag ON pinnedInTag (tag, note);

CREATE TABLE file (
  id INTEGER PRIMARY KEY,
  note INTEGER NOT NULL,
  filename TEXT,                     -- as the note's text links it
  fileSize INTEGER NOT NULL DEFAULT 0,  -- bytes
  position INTEGER NOT NULL DEFAULT 0,  -- order within the note, ascending
  ocrText TEXT,                      -- text recognised in an image or PDF
  storedName TEXT                    -- of the bytes, under files/; NULL: no bytes on this machine
);
CREATE INDEX fileByNote ON file (note, position);

-- From here on it is bookkeeping.

-- One short row a note: everything that lists show, so that they never walk through texts.
CREATE TABLE noteSummary (
  note INTEGER PRIMARY KEY,
  version INTEGER NOT NULL,          -- a new random number with every change by anybody
  uniqueIdentifier TEXT NOT NULL UNIQUE,
  title TEXT,
  creationDate REAL,
  modificationDate REAL,
  trashed INTEGER NOT NULL,
  archived INTEGER NOT NULL,
  permanentlyDeleted INTEGER,
  place INTEGER NOT NULL,            -- 4 for trashed, 2 for archived, 1 for permanentlyDeleted
  pinned INTEGER NOT NULL,
  encrypted INTEGER NOT NULL,
  readOnly INTEGER NOT NULL,
  -- NULL: not known. The next six are known together, and before the note is indexed.
  titleKey TEXT,                     -- title folded for look-up
  textDigest TEXT,                   -- head of the text's SHA-256, 16 hexadecimal digits
  textLength INTEGER,                -- in UTF-8 bytes
  todoIncomplete INTEGER,
  todoCompleted INTEGER,
  features INTEGER,                  -- bits, see text_facts.h
  searchRow INTEGER                  -- row of searchIndex; NULL: not indexed
);
CREATE INDEX summaryByPin ON noteSummary (trashed, archived, pinned, modificationDate);
CREATE INDEX summaryByModification ON noteSummary (trashed, archived, modificationDate);
CREATE INDEX summaryByCreation ON noteSummary (trashed, archived, creationDate);
CREATE INDEX summaryByTitle ON noteSummary (trashed, archived, title);
CREATE INDEX summaryByTitleKey ON noteSummary (titleKey) WHERE titleKey IS NOT NULL;
CREATE INDEX summaryOfFew ON noteSummary (note)  -- states that few notes are in; 8: blank
  WHERE encrypted = 1 OR readOnly = 1 OR ifnull(title, '') = '' OR (features & 8) <> 0;
CREATE INDEX summaryBySearchRow ON noteSummary (searchRow);

-- 'notes' and a place: the number of notes there. 'unpurged': up to this slice of the
-- search index texts of deleted and locked notes are to be removed; 0: nothing is to be. 'purged':
-- the slice that was looked through last for former texts of changed notes.
CREATE TABLE counter (
  name TEXT PRIMARY KEY,
  value INTEGER NOT NULL
) WITHOUT ROWID;
INSERT INTO counter VALUES
  ('notes0', 0), ('notes1', 0), ('notes2', 0), ('notes3', 0),
  ('notes4', 0), ('notes5', 0), ('notes6', 0), ('notes7', 0);

-- Files under files/ whose row is gone: to be removed from the disk.
CREATE TABLE removedFile (storedName TEXT PRIMARY KEY) WITHOUT ROWID;
)sql";

constexpr const char* createTablesOfVersion2 = R"sql(
-- The tags, pins and files of deleted notes, one a row: `tag`, `pinnedTag` or the columns of `file`.
-- A note that is inserted with the identifier gets them back; what is here when this program closes
-- the database is dropped.
CREATE TABLE IF NOT EXISTS orphan (
  uniqueIdentifier TEXT NOT NULL,
  tag INTEGER,
  pinnedTag INTEGER,
  filename TEXT,
  fileSize INTEGER,
  position INTEGER,
  ocrText TEXT,
  storedName TEXT
);
CREATE INDEX IF NOT EXISTS orphanByIdentifier ON orphan (uniqueIdentifier);

-- SQLite keeps this one itself, whatever becomes of the triggers.
CREATE INDEX IF NOT EXISTS noteLocked ON note (id) WHERE encrypted = 1;

-- Those of version 1 that have changed.
DROP TRIGGER IF EXISTS noteInserted;
DROP TRIGGER IF EXISTS summaryOrphaned;
)sql";

// `noteSummary.searchRow` is slice * 1024 + the note's position in that slice of the search index.
constexpr const char* createTablesOfVersion3 = R"sql(
-- The index of version 2 could not forget a text.
DROP TABLE IF EXISTS searchIndex;
UPDATE noteSummary SET searchRow = NULL WHERE searchRow IS NOT NULL;
DELETE FROM counter WHERE name = 'searchRow';
INSERT OR IGNORE INTO counter VALUES ('purged', 0), ('unpurged', 0);

-- The search index: trigrams of the normalised, case-folded texts, in slices of up to 1024 notes.
CREATE TABLE IF NOT EXISTS searchSlice (
  slice INTEGER PRIMARY KEY,
  notes INTEGER NOT NULL,              -- of whom it tells, changed and deleted ones included
  firsts BLOB NOT NULL                 -- the first trigram of each block
);
CREATE TABLE IF NOT EXISTS searchBlock (
  id INTEGER PRIMARY KEY,              -- slice * 65536 + the block's number in the slice
  entries BLOB NOT NULL                -- see slice_blocks.h
);

-- Titles that the texts of readable notes link to, folded. Known where features has bit 16.
CREATE TABLE IF NOT EXISTS noteLink (
  target TEXT NOT NULL,
  note INTEGER NOT NULL,
  PRIMARY KEY (target, note)
) WITHOUT ROWID;
CREATE INDEX IF NOT EXISTS noteLinkByNote ON noteLink (note);

-- Those of earlier versions that have changed.
DROP TRIGGER IF EXISTS noteRewritten;
DROP TRIGGER IF EXISTS noteLockChanged;
DROP TRIGGER IF EXISTS summaryDeleted;
DROP TRIGGER IF EXISTS summaryRenumbered;
)sql";

// In version 3 every note had a `titleKey`. Storing a million of them took a third of the time of
// indexing the notes, so now only titles that need one have a key (see title_keys.h).
constexpr const char* createTablesOfVersion4 = R"sql(
CREATE INDEX IF NOT EXISTS summaryByTitleIgnoringCase ON noteSummary (title COLLATE NOCASE);

-- Dropping the index is faster than deleting most of its entries.
DROP INDEX IF EXISTS summaryByTitleKey;
UPDATE noteSummary SET titleKey = NULL WHERE titleKey = title COLLATE NOCASE;
CREATE INDEX summaryByTitleKey ON noteSummary (titleKey) WHERE titleKey IS NOT NULL;
)sql";

// Every program that opens the database parses these triggers, at about a thousand instructions per
// word, so they are short.
//
// INSERT OR REPLACE and UPDATE OR REPLACE fire no delete trigger, so the other triggers clean up
// after the replaced row and pass its tags, pins and files to the row that now has its identifier.
constexpr const char* createTriggers = R"sql(
CREATE TRIGGER IF NOT EXISTS noteInserted AFTER INSERT ON note BEGIN
  DELETE FROM noteSummary WHERE note = NEW.id;
  UPDATE noteSummary SET note = NEW.id WHERE uniqueIdentifier = NEW.uniqueIdentifier;
  DELETE FROM noteSummary WHERE note = NEW.id;
  INSERT INTO noteSummary SELECT id, random(), uniqueIdentifier, title, creationDate,
      modificationDate, trashed, archived, permanentlyDeleted,
      trashed * 4 + archived * 2 + ifnull(permanentlyDeleted, 0), pinned, encrypted, readOnly,
      NULL, NULL, NULL, NULL, NULL, NULL, NULL
    FROM note WHERE id = NEW.id;
  DELETE FROM orphan WHERE uniqueIdentifier = NEW.uniqueIdentifier;
END;

CREATE TRIGGER IF NOT EXISTS noteUpdated AFTER UPDATE ON note BEGIN
  UPDATE noteSummary SET version = random(), modificationDate = NEW.modificationDate,
      encrypted = NEW.encrypted, readOnly = NEW.readOnly
    WHERE note IN (OLD.id, NEW.id);
END;

-- SQLite rewrites an index entry whenever a column of it is assigned, and compiles all triggers that
-- an update might fire: so what seldom changes stands apart. The first four names are of one column.
CREATE TRIGGER IF NOT EXISTS noteMoved AFTER UPDATE OF id, rowid, oid, _rowid_, uniqueIdentifier, title,
    creationDate, trashed, archived, permanentlyDeleted, pinned ON note BEGIN
  DELETE FROM noteSummary
    WHERE note <> OLD.id AND (note = NEW.id OR uniqueIdentifier = NEW.uniqueIdentifier);
  UPDATE noteSummary SET
      note = NEW.id, uniqueIdentifier = NEW.uniqueIdentifier, title = NEW.title,
      titleKey = CASE WHEN NEW.title IS OLD.title THEN titleKey END,
      creationDate = NEW.creationDate, trashed = NEW.trashed, archived = NEW.archived,
      permanentlyDeleted = NEW.permanentlyDeleted,
      place = NEW.trashed * 4 + NEW.archived * 2 + ifnull(NEW.permanentlyDeleted, 0),
      pinned = NEW.pinned
    WHERE note = OLD.id;
END;

CREATE TRIGGER IF NOT EXISTS noteRewritten AFTER UPDATE OF title, text ON note
    WHEN NEW.text IS NOT OLD.text OR NEW.title IS NOT OLD.title BEGIN
  UPDATE noteSummary SET textDigest = NULL, textLength = NULL,
      todoIncomplete = NULL, todoCompleted = NULL, features = NULL, searchRow = NULL
    WHERE note IN (OLD.id, NEW.id);
  DELETE FROM noteLink WHERE note IN (OLD.id, NEW.id);
END;

-- 16: TextFacts::linksStored.
CREATE TRIGGER IF NOT EXISTS noteHidden AFTER UPDATE OF encrypted, permanentlyDeleted ON note
    WHEN NEW.encrypted <> OLD.encrypted OR NEW.permanentlyDeleted IS NOT OLD.permanentlyDeleted BEGIN
  UPDATE noteSummary SET searchRow = NULL, features = features & ~16 WHERE note IN (OLD.id, NEW.id);
  DELETE FROM noteLink WHERE note IN (OLD.id, NEW.id);
  UPDATE counter SET value = (SELECT ifnull(max(slice), 0) FROM searchSlice) WHERE name = 'unpurged';
END;

CREATE TRIGGER IF NOT EXISTS noteDeleted AFTER DELETE ON note BEGIN
  DELETE FROM noteSummary WHERE note = OLD.id;
END;

CREATE TRIGGER IF NOT EXISTS summaryInserted AFTER INSERT ON noteSummary BEGIN
  UPDATE counter SET value = value + 1 WHERE name = 'notes' || NEW.place;
END;

CREATE TRIGGER IF NOT EXISTS summaryDeleted AFTER DELETE ON noteSummary BEGIN
  UPDATE counter SET value = value - 1 WHERE name = 'notes' || OLD.place;
  DELETE FROM noteLink WHERE note = OLD.note;
  UPDATE counter SET value = (SELECT ifnull(max(slice), 0) FROM searchSlice) WHERE name = 'unpurged';
END;

CREATE TRIGGER IF NOT EXISTS summaryOrphaned AFTER DELETE ON noteSummary
    WHEN NOT EXISTS (SELECT 1 FROM note WHERE id = OLD.note) BEGIN
  INSERT INTO orphan (uniqueIdentifier, tag)
    SELECT OLD.uniqueIdentifier, tag FROM noteTag WHERE note = OLD.note;
  INSERT INTO orphan (uniqueIdentifier, pinnedTag)
    SELECT OLD.uniqueIdentifier, tag FROM pinnedInTag WHERE note = OLD.note;
  INSERT INTO orphan SELECT OLD.uniqueIdentifier, NULL, NULL, filename, fileSize, position, ocrText,
    storedName FROM file WHERE note = OLD.note;
  DELETE FROM noteTag WHERE note = OLD.note;
  DELETE FROM pinnedInTag WHERE note = OLD.note;
  DELETE FROM file WHERE note = OLD.note;
END;

CREATE TRIGGER IF NOT EXISTS summaryMoved AFTER UPDATE OF place ON noteSummary WHEN NEW.place <> OLD.place BEGIN
  UPDATE counter SET value = value - 1 WHERE name = 'notes' || OLD.place;
  UPDATE counter SET value = value + 1 WHERE name = 'notes' || NEW.place;
END;

CREATE TRIGGER IF NOT EXISTS summaryRenumbered AFTER UPDATE OF note ON noteSummary WHEN NEW.note <> OLD.note BEGIN
  UPDATE OR IGNORE noteTag SET note = NEW.note WHERE note = OLD.note;
  UPDATE OR IGNORE pinnedInTag SET note = NEW.note WHERE note = OLD.note;
  UPDATE file SET note = NEW.note WHERE note = OLD.note;
  UPDATE OR REPLACE noteLink SET note = NEW.note WHERE note = OLD.note;
END;

CREATE TRIGGER IF NOT EXISTS orphanAdopted AFTER DELETE ON orphan BEGIN
  INSERT OR IGNORE INTO noteTag SELECT id, OLD.tag FROM note
    WHERE OLD.tag IS NOT NULL AND uniqueIdentifier = OLD.uniqueIdentifier;
  INSERT OR IGNORE INTO pinnedInTag SELECT id, OLD.pinnedTag FROM note
    WHERE OLD.pinnedTag IS NOT NULL AND uniqueIdentifier = OLD.uniqueIdentifier;
  INSERT INTO file (note, filename, fileSize, position, ocrText, storedName)
    SELECT id, OLD.filename, OLD.fileSize, OLD.position, OLD.ocrText, OLD.storedName FROM note
    WHERE ifnull(OLD.tag, OLD.pinnedTag) IS NULL AND uniqueIdentifier = OLD.uniqueIdentifier;
END;

CREATE TRIGGER IF NOT EXISTS fileDeleted AFTER DELETE ON file WHEN OLD.storedName IS NOT NULL BEGIN
  INSERT OR IGNORE INTO removedFile VALUES (OLD.storedName);
END;
)sql";

int userVersion(sqlite::Connection& connection) {
  sqlite::Query query = connection.query("PRAGMA user_version");
  query.step();
  return static_cast<int>(query.integer(0));
}

bool holdsAnything(sqlite::Connection& connection) {
  return connection.query("SELECT 1 FROM sqlite_schema LIMIT 1").step();
}

/// The CREATE statements of all tables, indexes and triggers.
std::set<std::string> objects(sqlite::Connection& connection) {
  // The sqlite3 shell appends a line break to a statement that contains a comment.
  sqlite::Query query =
      connection.query("SELECT rtrim(sql, char(10)) FROM sqlite_schema WHERE sql IS NOT NULL");
  std::set<std::string> result;
  while (query.step()) result.emplace(query.text(0));
  return result;
}

/// A dump lacks the version, so a database restored from one is recognized by its tables. With them
/// it has at least version 1, whatever else it contains.
bool hasTablesOfVersion1(sqlite::Connection& connection) {
  sqlite::Connection fresh(":memory:", sqlite::Connection::Mode::readWrite);
  fresh.execute(createTables);
  const std::set<std::string> ours = objects(fresh);
  const std::set<std::string> theirs = objects(connection);
  return std::includes(theirs.begin(), theirs.end(), ours.begin(), ours.end());
}

/// The schema version; 0 for an empty file. Throws std::runtime_error for a database that is newer
/// or not ours.
int knownVersion(sqlite::Connection& connection) {
  const int version = userVersion(connection);
  if (version > currentSchemaVersion) {
    throw std::runtime_error("The Tavi database was written by a newer version of this program.");
  }
  if (version != 0 || !holdsAnything(connection)) return version;
  if (hasTablesOfVersion1(connection)) return 1;
  throw std::runtime_error("The file is a database, but not one of Tavi.");
}

}  // namespace

bool hasSearchIndex(sqlite::Connection& connection) {
  return sqlite3_table_column_metadata(connection.handle(), "main", "searchSlice", nullptr, nullptr,
                                       nullptr, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool hasOwnTriggersOnly(sqlite::Connection& connection) {
  // SQLite keeps a statement from the trigger's name on as it was written.
  constexpr std::string_view head = "CREATE TRIGGER ";
  sqlite::Query query = connection.query("SELECT sql FROM sqlite_schema WHERE type = 'trigger'");
  while (query.step()) {
    const std::string_view sql = query.text(0);
    if (!sql.starts_with(head)) return false;
    const bool isOwn = std::string_view(createTriggers).find(sql.substr(head.size())) != sql.npos;
    if (!isOwn) return false;
  }
  return true;
}

void upgradeSchema(sqlite::Connection& connection) {
  const int version = knownVersion(connection);
  if (version == currentSchemaVersion) return;
  // Reading does not need the tables of later versions.
  if (version > 0 && sqlite3_db_readonly(connection.handle(), "main") != 0) return;
  // In write-ahead mode readers and writers do not wait for each other, and a commit takes one
  // sync. Pages are small because a write logs a dozen of them, which the next program that opens
  // the database reads again; larger ones would make a scan of all texts a fifth faster.
  connection.execute("PRAGMA page_size = 4096; PRAGMA journal_mode = WAL");
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
  const int versionNow = knownVersion(connection);  // another process may have been faster
  if (versionNow == currentSchemaVersion) return;
  if (versionNow == 0) connection.execute(createTables);
  if (versionNow < 2) connection.execute(createTablesOfVersion2);
  if (versionNow < 3) connection.execute(createTablesOfVersion3);
  connection.execute(createTablesOfVersion4);
  connection.execute(createTriggers);
  connection.execute(touchFirstPage);
  transaction.commit();
  connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

void repairLockFlags(sqlite::Connection& connection) {
  // Every command asks this, and for most the answer is no.
  constexpr const char* locked =
      "SELECT 1 FROM note WHERE encrypted = 1 "
      "UNION ALL SELECT 1 FROM noteSummary WHERE encrypted = 1";
  if (!connection.query(locked).step()) return;
  constexpr const char* differing =
      "SELECT s.note FROM note n CROSS JOIN noteSummary s ON s.note = n.id "
      "WHERE n.encrypted = 1 AND s.encrypted = 0 "
      "UNION ALL SELECT s.note FROM noteSummary s CROSS JOIN note n ON n.id = s.note "
      "WHERE s.encrypted = 1 AND n.encrypted = 0";
  if (!connection.query(differing).step()) return;
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
  connection.execute(fmt::format("UPDATE noteSummary SET encrypted = 1 - encrypted, version = "
                                 "random(), searchRow = NULL, features = {} "
                                 "WHERE note IN ({});"
                                 "DELETE FROM noteLink WHERE note IN "
                                 "(SELECT note FROM noteSummary WHERE encrypted = 1);"
                                 "UPDATE counter SET value = (SELECT ifnull(max(slice), 0) "
                                 "FROM searchSlice) WHERE name = 'unpurged'",
                                 FeatureSQL::withoutStoredLinks, differing)
                         .c_str());
  transaction.commit();
}

}  // namespace tavimodel

#include "platform/model/schema.h"

#include <stdexcept>

#include "platform/model/sqlite.h"

// The database is shared with programs that know only the tables of the first group, and write
// them with plain SQL. So whatever this program keeps besides is kept up by triggers, these use
// built-in functions and ordinary tables only (a client may lack FTS5, or run with
// trusted_schema off), and what SQL cannot compute is marked as not known (NULL) by the trigger
// and worked out later, by the next reader in memory and by the next writer for good.
//
// Booleans are 0 or 1. Dates are seconds since 1970-01-01 UTC, NULL when unknown.

namespace tavimodel {
namespace {

constexpr const char* createTables = R"sql(
CREATE TABLE note (
  id INTEGER PRIMARY KEY,
  uniqueIdentifier TEXT NOT NULL UNIQUE DEFAULT (
    hex(randomblob(4)) || '-' || hex(randomblob(2)) || '-4' || substr(hex(randomblob(2)), 2) || '-' ||
    substr('89AB', 1 + (random() & 3), 1) || substr(hex(randomblob(2)), 2) || '-' ||
    hex(randomblob(6))),
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
  version INTEGER NOT NULL,          -- of the note's last change by anybody; grows only
  uniqueIdentifier TEXT NOT NULL UNIQUE,
  title TEXT,
  creationDate REAL,
  modificationDate REAL,
  trashed INTEGER NOT NULL,
  archived INTEGER NOT NULL,
  permanentlyDeleted INTEGER,
  pinned INTEGER NOT NULL,
  encrypted INTEGER NOT NULL,
  readOnly INTEGER NOT NULL,
  titleKey TEXT,                     -- title folded for look-up; NULL: not known
  textDigest TEXT,                   -- head of the text's SHA-256, 16 hexadecimal digits; NULL: not
  textLength INTEGER,                -- known, and neither are the next four. In UTF-8 bytes
  todoIncomplete INTEGER,
  todoCompleted INTEGER,
  features INTEGER,                  -- bits, see text_facts.h
  searchRow INTEGER                  -- row of searchIndex; NULL: not indexed
);
CREATE INDEX summaryByPin ON noteSummary (trashed, archived, pinned, modificationDate);
CREATE INDEX summaryByModification ON noteSummary (trashed, archived, modificationDate);
CREATE INDEX summaryByCreation ON noteSummary (trashed, archived, creationDate);
CREATE INDEX summaryByTitle ON noteSummary (trashed, archived, title);
CREATE INDEX summaryByTitleKey ON noteSummary (titleKey);
CREATE INDEX summaryPinned ON noteSummary (note) WHERE pinned = 1;
CREATE INDEX summaryOfFew ON noteSummary (note)  -- states that few notes are in; 8: blank
  WHERE encrypted = 1 OR readOnly = 1 OR ifnull(title, '') = '' OR (features & 8) <> 0;
CREATE INDEX summaryUnknown ON noteSummary (note) WHERE textDigest IS NULL;
CREATE INDEX summaryNotIndexed ON noteSummary (note) WHERE searchRow IS NULL;
CREATE INDEX summaryBySearchRow ON noteSummary (searchRow) WHERE searchRow IS NOT NULL;

-- 'version': the last version given out. 'searchRow': the last row of searchIndex.
-- 'notes' and three digits: the number of notes by trashed, archived and permanentlyDeleted.
CREATE TABLE counter (
  name TEXT PRIMARY KEY,
  value INTEGER NOT NULL
) WITHOUT ROWID;
INSERT INTO counter VALUES ('version', 0), ('searchRow', 0),
  ('notes000', 0), ('notes001', 0), ('notes010', 0), ('notes011', 0),
  ('notes100', 0), ('notes101', 0), ('notes110', 0), ('notes111', 0);

-- Files under files/ whose row is gone: to be removed from the disk.
CREATE TABLE removedFile (storedName TEXT PRIMARY KEY) WITHOUT ROWID;

-- Trigrams of the normalised, case-folded texts. Only ever added to: a changed note gets a new row
-- and its old one points nowhere, so no text that is gone is needed to take it out.
CREATE VIRTUAL TABLE searchIndex USING fts5 (
  body, content='', detail=none, columnsize=0, tokenize='trigram case_sensitive 1');
)sql";

// An INSERT OR REPLACE runs no delete trigger, so the insert trigger clears up after the row that
// was replaced, and hands its tags, pins and files on to the row that has its identifier now.
constexpr const char* createTriggers = R"sql(
CREATE TRIGGER noteInserted AFTER INSERT ON note BEGIN
  UPDATE counter SET value = value + 1 WHERE name = 'version';
  UPDATE OR IGNORE noteTag SET note = NEW.id WHERE note = (
    SELECT note FROM noteSummary WHERE uniqueIdentifier = NEW.uniqueIdentifier AND note <> NEW.id);
  UPDATE OR IGNORE pinnedInTag SET note = NEW.id WHERE note = (
    SELECT note FROM noteSummary WHERE uniqueIdentifier = NEW.uniqueIdentifier AND note <> NEW.id);
  UPDATE file SET note = NEW.id WHERE note = (
    SELECT note FROM noteSummary WHERE uniqueIdentifier = NEW.uniqueIdentifier AND note <> NEW.id);
  DELETE FROM noteSummary WHERE uniqueIdentifier = NEW.uniqueIdentifier OR note = NEW.id;
  INSERT INTO noteSummary (note, version, uniqueIdentifier, title, creationDate, modificationDate,
      trashed, archived, permanentlyDeleted, pinned, encrypted, readOnly, titleKey)
    VALUES (NEW.id, (SELECT value FROM counter WHERE name = 'version'), NEW.uniqueIdentifier,
      NEW.title, NEW.creationDate, NEW.modificationDate, NEW.trashed, NEW.archived,
      NEW.permanentlyDeleted, NEW.pinned, NEW.encrypted, NEW.readOnly,
      CASE WHEN NEW.title GLOB '*[^ -~]*' THEN NULL ELSE lower(ifnull(NEW.title, '')) END);
END;

CREATE TRIGGER noteUpdated AFTER UPDATE ON note BEGIN
  UPDATE counter SET value = value + 1 WHERE name = 'version';
  UPDATE noteSummary SET
      note = NEW.id, version = (SELECT value FROM counter WHERE name = 'version'),
      uniqueIdentifier = NEW.uniqueIdentifier, title = NEW.title,
      creationDate = NEW.creationDate, modificationDate = NEW.modificationDate,
      trashed = NEW.trashed, archived = NEW.archived, permanentlyDeleted = NEW.permanentlyDeleted,
      pinned = NEW.pinned, encrypted = NEW.encrypted, readOnly = NEW.readOnly
    WHERE note = OLD.id;
END;

CREATE TRIGGER noteTitleUpdated AFTER UPDATE OF title ON note WHEN NEW.title IS NOT OLD.title BEGIN
  UPDATE noteSummary SET searchRow = NULL,
      titleKey = CASE WHEN NEW.title GLOB '*[^ -~]*' THEN NULL ELSE lower(ifnull(NEW.title, '')) END
    WHERE note IN (OLD.id, NEW.id);
END;

CREATE TRIGGER noteTextUpdated AFTER UPDATE OF text ON note WHEN NEW.text IS NOT OLD.text BEGIN
  UPDATE noteSummary SET textDigest = NULL, textLength = NULL, todoIncomplete = NULL,
      todoCompleted = NULL, features = NULL, searchRow = NULL
    WHERE note IN (OLD.id, NEW.id);
END;

CREATE TRIGGER noteDeleted AFTER DELETE ON note BEGIN
  UPDATE counter SET value = value + 1 WHERE name = 'version';
  DELETE FROM noteTag WHERE note = OLD.id;
  DELETE FROM pinnedInTag WHERE note = OLD.id;
  DELETE FROM file WHERE note = OLD.id;
  DELETE FROM noteSummary WHERE note = OLD.id;
END;

CREATE TRIGGER summaryInserted AFTER INSERT ON noteSummary BEGIN
  UPDATE counter SET value = value + 1 WHERE name =
    'notes' || NEW.trashed || NEW.archived || ifnull(NEW.permanentlyDeleted, 0);
END;

CREATE TRIGGER summaryDeleted AFTER DELETE ON noteSummary BEGIN
  UPDATE counter SET value = value - 1 WHERE name =
    'notes' || OLD.trashed || OLD.archived || ifnull(OLD.permanentlyDeleted, 0);
END;

CREATE TRIGGER summaryMoved AFTER UPDATE OF trashed, archived, permanentlyDeleted ON noteSummary
  WHEN NEW.trashed <> OLD.trashed OR NEW.archived <> OLD.archived
    OR ifnull(NEW.permanentlyDeleted, 0) <> ifnull(OLD.permanentlyDeleted, 0) BEGIN
  UPDATE counter SET value = value - 1 WHERE name =
    'notes' || OLD.trashed || OLD.archived || ifnull(OLD.permanentlyDeleted, 0);
  UPDATE counter SET value = value + 1 WHERE name =
    'notes' || NEW.trashed || NEW.archived || ifnull(NEW.permanentlyDeleted, 0);
END;

CREATE TRIGGER fileDeleted AFTER DELETE ON file WHEN OLD.storedName IS NOT NULL BEGIN
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

}  // namespace

void upgradeSchema(sqlite::Connection& connection) {
  const auto isCurrent = [&] {
    const int version = userVersion(connection);
    if (version > currentSchemaVersion) {
      throw std::runtime_error("The Tavi database was written by a newer version of this program.");
    }
    if (version < currentSchemaVersion && (version != 0 || holdsAnything(connection))) {
      throw std::runtime_error("The file is a database, but not one of Tavi.");
    }
    return version == currentSchemaVersion;
  };
  if (isCurrent()) return;
  // Writers and readers do not wait for each other, and a commit is one sync.
  // Three notes of the usual size share a page of 8 KiB, where one of 4 KiB would hold one of them.
  connection.execute("PRAGMA page_size = 8192; PRAGMA journal_mode = WAL");
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
  if (isCurrent()) return;  // another process was quicker
  connection.execute(createTables);
  connection.execute(createTriggers);
  connection.execute("PRAGMA user_version = 1");
  transaction.commit();
  connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace tavimodel

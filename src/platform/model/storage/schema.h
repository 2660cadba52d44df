#pragma once

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// The schema version that this program writes to `PRAGMA user_version`.
constexpr int currentSchemaVersion = 4;

/// Rewrites page 1 of the database without changing its content. Every commit of this program does
/// so, which ties the log to its database (see write_ahead_log.h).
constexpr const char* touchFirstPage = "PRAGMA user_version = 4";

/// Upgrades an open database to the current schema step by step, in one transaction; an empty file
/// gets the whole schema. Takes no lock if the schema is current. Throws sqlite::Error, or
/// std::runtime_error for a database that has a newer version or is not ours, which stays
/// untouched.
void upgradeSchema(sqlite::Connection& connection);

/// Whether the database has the tables of the search index and of links. False for a read-only
/// database of version 1 or 2, which upgradeSchema leaves as it is.
bool hasSearchIndex(sqlite::Connection& connection);

/// Whether the database has no triggers but those of this program, so that statements which do
/// their work may run without them. Throws sqlite::Error.
bool hasOwnTriggersOnly(sqlite::Connection& connection);

/// Corrects the copy of `note.encrypted` in `noteSummary` where a program changed one of the two
/// without the triggers, so that no list and no search shows a locked text. Throws sqlite::Error if
/// it cannot.
void repairLockFlags(sqlite::Connection& connection);

}  // namespace tavimodel

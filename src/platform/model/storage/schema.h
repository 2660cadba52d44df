#pragma once

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// The version that this program writes into `PRAGMA user_version`.
constexpr int currentSchemaVersion = 3;

/// Changes page 1 of the database and nothing in it. Every commit of this program does so, which
/// ties the log to its database (see write_ahead_log.h).
constexpr const char* touchFirstPage = "PRAGMA user_version = 3";

/// Brings an open database to the current schema, step by step, in one transaction; an empty file
/// gets the whole schema. Does nothing, and takes no lock, when it is current already. Throws
/// sqlite::Error, or std::runtime_error for a database of a newer version or one that is not ours,
/// which stays untouched.
void upgradeSchema(sqlite::Connection& connection);

/// Whether the database has the tables of the current version. False for an older one that cannot
/// be written, where upgradeSchema leaves it as it is.
bool isCurrent(sqlite::Connection& connection);

/// Whether a note is locked is told by `note`, and `noteSummary` has a copy that triggers keep.
/// Where a program has changed one of the two without them the copy is put right, so that no list
/// and no search shows a locked text. Throws sqlite::Error when that cannot be done.
void repairLocks(sqlite::Connection& connection);

}  // namespace tavimodel

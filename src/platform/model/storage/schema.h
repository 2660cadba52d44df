#pragma once

namespace tavimodel {

namespace sqlite {
class Connection;
}

/// The version that this program writes into `PRAGMA user_version`.
constexpr int currentSchemaVersion = 1;

/// Changes page 1 of the database and nothing in it. Every commit of this program does so, which
/// ties the log to its database (see write_ahead_log.h).
constexpr const char* touchFirstPage = "PRAGMA user_version = 1";

/// Brings an open database to the current schema, step by step, in one transaction; an empty file
/// gets the whole schema. Does nothing, and takes no lock, when it is current already. Throws
/// sqlite::Error, or std::runtime_error for a database of a newer version or one that is not ours,
/// which stays untouched.
void upgradeSchema(sqlite::Connection& connection);

}  // namespace tavimodel

#pragma once

namespace tavimodel::sqlite {

/// Registers a VFS that is the system's own but for this: while pages of the database file are read
/// in ascending order, as in a scan or in a large text, it reads several with one call. SQLite
/// reads them one by one, which took half the time of a scan.
///
/// The pages read ahead are dropped when a lock is taken or released and when the file is written.
/// Within a read transaction they cannot become outdated: in WAL mode nobody overwrites a page of
/// the file that a reader may still need (sqlite.org/wal.html).
///
/// Returns the name of the VFS, for sqlite3_open_v2(), or null if there is none; then the default
/// one serves as well.
const char* readAheadVFS();

}  // namespace tavimodel::sqlite

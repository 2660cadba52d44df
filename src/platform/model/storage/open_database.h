#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// With `readOnly` the database must be there already: nothing is made, written or tidied up, and
/// nobody waited for.
enum class DatabaseAccess { readWrite, readOnly };

/// `tavi.sqlite`, in the application's data folder.
std::filesystem::path databaseIn(const std::filesystem::path& folder);

/// Opens the database in the folder. With `readWrite` the folder and what belongs into it come into
/// being, private to the user, where they are missing, and a copy that was made in another journal
/// mode is put back into write-ahead mode where the lock is free.
///
/// A connection to a database that lies beside a log of another one is refused (see
/// Connection::refuse); both files stay as they are. Throws sqlite::Error, std::system_error or
/// std::runtime_error; a database that cannot be opened is left as it was.
std::unique_ptr<sqlite::Connection> openDatabase(const std::filesystem::path& folder,
                                                 DatabaseAccess access);

}  // namespace tavimodel

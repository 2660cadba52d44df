#pragma once

#include <filesystem>
#include <memory>

#include "platform/model/storage/sqlite.h"

namespace tavimodel {

/// How to open the database. With `readOnly` it must exist; opening it writes nothing and waits for
/// no lock.
enum class DatabaseAccess { readWrite, readOnly };

/// How long a writing connection waits for another writer, in milliseconds.
constexpr int waitForWriters = 5000;

/// The path of `tavi.sqlite` in the application's data folder.
std::filesystem::path databaseIn(const std::filesystem::path& folder);

/// Opens the database in the folder. With `readWrite`, creates missing folders and files,
/// accessible to the user only, and switches a database in another journal mode to write-ahead mode
/// if its lock is free.
///
/// If the log beside the database belongs to another one, returns a refused connection (see
/// Connection::refuse) and leaves both files as they are. Throws sqlite::Error, std::system_error
/// or std::runtime_error if the database cannot be opened, and leaves it as it was.
std::unique_ptr<sqlite::Connection> openDatabase(const std::filesystem::path& folder,
                                                 DatabaseAccess access);

}  // namespace tavimodel

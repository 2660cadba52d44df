#pragma once

#include <sqlite3.h>

#include <cstddef>

namespace tavimodel::sqlite {

/// A file of SQLite's that passes calls on to the system's file object, which follows it in the
/// memory that SQLite has allocated.
struct WrappedFile : sqlite3_file {
  /// The bytes that every kind of wrapped file takes before the system's object.
  static constexpr std::size_t wrapperSize = 128;

  sqlite3_file* system() {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<std::byte*>(this) + wrapperSize);
  }
};

/// Calls the method of the system's file.
template <auto method, typename... Arguments>
auto forward(sqlite3_file* file, Arguments... arguments) {
  sqlite3_file* system = static_cast<WrappedFile*>(file)->system();
  return (system->pMethods->*method)(system, arguments...);
}

}  // namespace tavimodel::sqlite

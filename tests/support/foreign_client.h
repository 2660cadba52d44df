#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace support {

/// Another program that shares the database: plain SQL over its own connection, with
/// `trusted_schema` off, as careful clients set it. Throws std::runtime_error with SQLite's
/// message.
class ForeignClient {
 public:
  explicit ForeignClient(const std::filesystem::path& database) {
    if (sqlite3_open(database.c_str(), &handle_) != SQLITE_OK) fail();
    sqlite3_busy_timeout(handle_, 5000);
    run("PRAGMA trusted_schema = OFF");
  }
  ~ForeignClient() { sqlite3_close(handle_); }
  ForeignClient(const ForeignClient&) = delete;
  ForeignClient& operator=(const ForeignClient&) = delete;

  void run(const std::string& sql) {
    if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }

  /// The first column of the first row, as text; empty when there is no row.
  std::string value(const std::string& sql) {
    std::string result;
    const auto keep = [](void* out, int, char** values, char**) {
      auto& text = *static_cast<std::string*>(out);
      if (text.empty() && values[0] != nullptr) text = values[0];
      return 0;
    };
    if (sqlite3_exec(handle_, sql.c_str(), keep, &result, nullptr) != SQLITE_OK) fail();
    return result;
  }

  sqlite3* handle() const { return handle_; }

 private:
  [[noreturn]] void fail() { throw std::runtime_error(sqlite3_errmsg(handle_)); }
  sqlite3* handle_ = nullptr;
};

}  // namespace support

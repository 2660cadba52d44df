#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace bench {

/// A minimal SQLite connection. Any failure ends the process, since a benchmark that continues
/// would measure the wrong thing.
class Database {
 public:
  explicit Database(const char* path) {
    // NOMUTEX: one thread, as in the program. Closing does not checkpoint either.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    if (sqlite3_open_v2(path, &handle_, flags, nullptr) != SQLITE_OK) fail();
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  }
  ~Database() { sqlite3_close(handle_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void execute(const char* script) {
    if (sqlite3_exec(handle_, script, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
  }
  sqlite3* handle() const { return handle_; }
  [[noreturn]] void fail() const {
    std::fprintf(stderr, "%s\n", sqlite3_errmsg(handle_));
    std::exit(1);
  }

 private:
  sqlite3* handle_ = nullptr;
};

/// A prepared statement. Parameters and columns are numbered as in SQLite: from 1 and from 0.
class Statement {
 public:
  Statement(Database& database, std::string_view sql) : database_(database) {
    if (sqlite3_prepare_v2(database.handle(), sql.data(), static_cast<int>(sql.size()), &statement_,
                           nullptr) != SQLITE_OK) {
      database.fail();
    }
  }
  ~Statement() { sqlite3_finalize(statement_); }
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;

  Statement& bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(statement_, parameter, value);
    return *this;
  }
  Statement& bind(int parameter, double value) {
    sqlite3_bind_double(statement_, parameter, value);
    return *this;
  }
  /// The text is not copied: it must stay valid until the statement is reset.
  Statement& bind(int parameter, std::string_view value) {
    sqlite3_bind_text64(statement_, parameter, value.data(), value.size(), SQLITE_STATIC,
                        SQLITE_UTF8);
    return *this;
  }

  /// Whether there is a row.
  bool step() {
    const int code = sqlite3_step(statement_);
    if (code != SQLITE_ROW && code != SQLITE_DONE) database_.fail();
    return code == SQLITE_ROW;
  }
  void reset() { sqlite3_reset(statement_); }
  void run() {
    step();
    reset();
  }

  std::int64_t integer(int column) { return sqlite3_column_int64(statement_, column); }
  double real(int column) { return sqlite3_column_double(statement_, column); }
  std::string_view text(int column) {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }

 private:
  Database& database_;
  sqlite3_stmt* statement_ = nullptr;
};

}  // namespace bench

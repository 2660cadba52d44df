#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_context;
struct sqlite3_file;
struct sqlite3_stmt;
struct sqlite3_value;

/// A thin layer over SQLite: owners for its handles, and one place that turns result codes into
/// errors. Functions throw Error unless their comment says otherwise.
namespace tavimodel::sqlite {

/// A failed SQLite call. `what()` is one sentence for the user that names the cause.
class Error : public std::runtime_error {
 public:
  /// `systemError`: an errno, or 0 if unknown; `detail`: SQLite's own message.
  Error(int code, int systemError, const std::string& detail);
  /// A failure detected outside SQLite, with its own sentence. Its code is SQLITE_CANTOPEN.
  explicit Error(const std::string& sentence);
  /// The primary result code, such as SQLITE_BUSY.
  int code() const { return code_; }

 private:
  int code_;
};

class Connection;

/// A row that Query::visit passes on. Columns are numbered from 0.
class Row {
 public:
  explicit Row(sqlite3_value** values) : values_(values) {}
  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  double real(int column) const;
  /// Valid while the row is visited.
  std::string_view text(int column) const;
  std::optional<double> optionalReal(int column) const;

 private:
  sqlite3_value** values_;
};

/// A prepared statement borrowed from its connection. The destructor resets and returns it. As in
/// SQLite, parameters are numbered from 1, columns from 0.
class Query {
 public:
  Query(Query&& other) noexcept;
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  ~Query();

  Query& bind(int parameter, std::int64_t value);
  Query& bind(int parameter, double value);
  /// The text must outlive the query.
  Query& bind(int parameter, std::string_view text);
  Query& bind(int parameter, const std::string& text) {
    return bind(parameter, std::string_view(text));
  }
  Query& bind(int parameter, std::string&& text) = delete;
  Query& bindNull(int parameter);
  template <class Value>
  Query& bind(int parameter, const std::optional<Value>& value) {
    return value ? bind(parameter, *value) : bindNull(parameter);
  }
  template <class Value>
  Query& bind(int parameter, std::optional<Value>&& value) = delete;

  /// How many parameters the statement has.
  int parameterCount() const;

  /// Advances to the next row; false if there is none.
  bool step();
  /// Runs the statement to its end, ignoring any rows.
  void run();
  /// Runs a statement of the form "SELECT visitRow(<columns>) FROM ..." and calls `visitor` with
  /// each of its rows, in the order in which SQLite reads them; ORDER BY has no effect. Quicker
  /// than to step through many rows. What `visitor` throws is passed on.
  void visit(const std::function<void(const Row&)>& visitor);
  /// Makes the statement ready to run again, with its parameters as they are bound.
  Query& reset();

  bool isNull(int column) const;
  std::int64_t integer(int column) const;
  double real(int column) const;
  /// Valid until the next step.
  std::string_view text(int column) const;
  std::optional<double> optionalReal(int column) const;

 private:
  friend class Connection;
  Query(Connection& connection, sqlite3_stmt* statement);

  Connection* connection_;
  sqlite3_stmt* statement_;
};

/// A database connection. Statements are prepared on first use and cached by their text.
class Connection {
 public:
  /// How the file is opened.
  enum class Mode { readWrite, readOnly };

  /// Opens an existing file; for reading, `path` may also be an SQLite URI. Throws Error.
  Connection(const std::string& path, Mode mode);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// Borrows the statement, prepared; `sql` is one statement.
  Query query(std::string_view sql);
  /// Runs a script of statements that take no parameters.
  void execute(const char* script);
  std::int64_t lastInsertedRow() const;
  /// The number of rows that the last INSERT, UPDATE or DELETE changed, without those of triggers.
  std::int64_t rowsChanged() const;
  /// Sets how long a statement waits for another writer before it fails with SQLITE_BUSY.
  void setBusyTimeout(int milliseconds);
  /// Sets a statement to run at the end of each write transaction. The string must outlive the
  /// connection.
  void setBeforeCommit(const char* sql) { beforeCommit_ = sql; }
  /// Makes every later statement throw an Error with this sentence.
  void refuse(std::string sentence) { refusal_ = std::move(sentence); }
  bool isRefused() const { return !refusal_.empty(); }
  /// The first `size` bytes of the database file, ignoring the log; empty if the file is shorter.
  /// Takes no lock.
  std::string fileHeader(std::size_t size) const;
  /// A number that changes when another connection commits (PRAGMA data_version).
  std::int64_t dataVersion();
  /// Takes the place of SQLite's automatic checkpoints: from now on `logPages` counts.
  void countLogPages();
  /// The number of pages in the log after this connection's last commit; 0 before the first one.
  /// Falls when SQLite begins a log that was written back anew.
  std::int64_t logPages() const { return logPages_; }
  /// Forgets the cached pages of the database, so that they are read again.
  void dropCachedPages();
  /// Syncs the log, including commits that others made without a sync.
  void syncLog();
  /// Whether `execute` has run a script, which may have changed settings or created temporary
  /// tables.
  bool hasRunScripts() const { return hasRunScripts_; }
  /// The number of cached statements.
  std::size_t statementsKept() const { return statements_.size(); }
  /// The number of statements run so far, for tests.
  std::int64_t statementsRun() const { return statementsRun_; }
  sqlite3* handle() const { return handle_; }

 private:
  friend class Query;
  friend class Transaction;
  void giveBack(sqlite3_stmt* statement);
  static void visitRow(sqlite3_context* context, int count, sqlite3_value** values);
  [[noreturn]] void fail() const;

  /// A prepared statement; `onLoan` while a Query uses it.
  struct Cached {
    sqlite3_stmt* statement;
    bool onLoan;
  };
  sqlite3* handle_ = nullptr;
  std::unordered_map<std::string_view, Cached> statements_;  // keyed by the statement's own text
  std::int64_t statementsRun_ = 0;
  std::int64_t logPages_ = 0;
  bool hasRunScripts_ = false;
  const char* beforeCommit_ = nullptr;
  const std::function<void(const Row&)>* visitor_ = nullptr;  // of the innermost Query::visit
  std::exception_ptr visitorFailure_;
  std::string refusal_;
};

/// While it lives, the connection's statements fire no triggers. Both of its ends make SQLite
/// prepare all cached statements again.
class TriggersOff {
 public:
  explicit TriggersOff(Connection& connection);
  ~TriggersOff();
  TriggersOff(const TriggersOff&) = delete;
  TriggersOff& operator=(const TriggersOff&) = delete;

 private:
  Connection& connection_;
};

/// An exclusive lock of the database file against all other connections, also those of this
/// process. It succeeds only before the connection's first statement, and only if no other
/// connection has the file open. Does not throw.
class ExclusiveLock {
 public:
  explicit ExclusiveLock(Connection& connection);
  ~ExclusiveLock();
  ExclusiveLock(const ExclusiveLock&) = delete;
  ExclusiveLock& operator=(const ExclusiveLock&) = delete;
  explicit operator bool() const { return held_; }

 private:
  sqlite3_file* file_;
  bool held_ = false;
};

/// A transaction that rolls back unless it is committed. A write transaction takes the write lock
/// at once.
class Transaction {
 public:
  /// Whether the transaction takes the write lock.
  enum class Kind { read, write };
  Transaction(Connection& connection, Kind kind);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  /// Throws Error; then nothing is committed.
  void commit();

 private:
  void rollBack();

  Connection& connection_;
  bool writes_;
  bool open_ = true;
};

}  // namespace tavimodel::sqlite

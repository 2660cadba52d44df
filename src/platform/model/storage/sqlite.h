#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_file;
struct sqlite3_stmt;

/// SQLite as the model needs it: owners for handles, one place that turns result codes into errors.
namespace tavimodel::sqlite {

/// A failed call. `what()` is one sentence for the user that names the cause.
class Error : public std::runtime_error {
 public:
  Error(int code, int systemError, const std::string& detail);
  /// A failure that SQLite does not know, in a sentence of its own.
  explicit Error(const std::string& sentence);
  /// The primary result code, such as SQLITE_BUSY.
  int code() const { return code_; }

 private:
  int code_;
};

class Connection;

/// A prepared statement on loan from its connection. It is reset and given back when it goes out
/// of scope. Parameters and columns count as in SQLite: from 1 and from 0.
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

  /// True when there is a row.
  bool step();
  /// Runs a statement that gives no rows.
  void run();

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

/// One connection. Statements are prepared on first use and kept.
class Connection {
 public:
  enum class Mode { readWrite, readOnly };

  /// Opens an existing file, which SQLite's URIs name too for reading. Throws Error.
  Connection(const std::string& path, Mode mode);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  Query query(std::string_view sql);
  /// Runs a script of statements without parameters.
  void execute(const char* script);
  std::int64_t lastInsertedRow() const;
  /// How long a statement waits for another writer before it fails with SQLITE_BUSY.
  void setBusyTimeout(int milliseconds);
  /// Run at the end of each write transaction; must outlive the connection.
  void setBeforeCommit(const char* sql) { beforeCommit_ = sql; }
  /// From now on every statement fails with this sentence.
  void refuse(std::string sentence) { refusal_ = std::move(sentence); }
  bool isRefused() const { return !refusal_.empty(); }
  /// The first bytes of the database file itself, whatever the log holds; empty where the file is
  /// shorter. Takes no lock.
  std::string fileHeader(std::size_t size) const;
  /// Changes whenever another connection has committed (PRAGMA data_version).
  std::int64_t dataVersion();
  /// Brings the log's file up to date on the disk: what others have committed without a sync, too.
  void syncLog();
  /// Whether a script has been run, which may have changed settings or made temporary tables.
  bool hasRunScripts() const { return hasRunScripts_; }
  /// How many prepared statements are kept.
  std::size_t statementsKept() const { return statements_.size(); }
  /// Statements run so far, for tests that count them.
  std::int64_t statementsRun() const { return statementsRun_; }
  sqlite3* handle() const { return handle_; }

 private:
  friend class Query;
  friend class Transaction;
  void giveBack(sqlite3_stmt* statement);
  [[noreturn]] void fail() const;

  struct Cached {
    sqlite3_stmt* statement;
    bool onLoan;
  };
  sqlite3* handle_ = nullptr;
  std::unordered_map<std::string_view, Cached> statements_;  // keyed by the statement's own text
  std::int64_t statementsRun_ = 0;
  bool hasRunScripts_ = false;
  const char* beforeCommit_ = nullptr;
  std::string refusal_;
};

/// The database file, locked against every other connection, of this process too. It can be had
/// before the connection's first statement only, and while nobody else has the file open.
class SoleUse {
 public:
  explicit SoleUse(Connection& connection);
  ~SoleUse();
  SoleUse(const SoleUse&) = delete;
  SoleUse& operator=(const SoleUse&) = delete;
  explicit operator bool() const { return held_; }

 private:
  sqlite3_file* file_;
  bool held_ = false;
};

/// A transaction that rolls back unless it is committed.
class Transaction {
 public:
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

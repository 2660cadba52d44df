#include "platform/model/storage/sqlite.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cstring>
#include <utility>

#include "platform/model/storage/read_ahead.h"
#include "platform/model/storage/sqlite_memory.h"

namespace tavimodel::sqlite {
namespace {

std::string sentence(int code, int systemError, const std::string& detail) {
  const std::string cause = systemError != 0 ? std::strerror(systemError) : detail;
  switch (code) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "The Tavi database is in use by another program. Try again.";
    case SQLITE_FULL:
      return "The disk is full. Nothing was saved.";
    case SQLITE_READONLY:
      return "The Tavi database cannot be written: it, or its folder, is read-only.";
    case SQLITE_PERM:
    case SQLITE_CANTOPEN:
      return fmt::format("The Tavi database cannot be opened: {}.", cause);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
      return fmt::format("The Tavi database is damaged: {}.", detail);
    case SQLITE_IOERR:
      return fmt::format("The Tavi database could not be read or written: {}.", cause);
    default:
      return fmt::format("The Tavi database reported an error: {}.", detail);
  }
}

bool configureLibrary() {
  useMemoryPools();
  // Memory statistics are not used, and would take a lock at every allocation.
  sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
  // Keeps the statement journal in memory. Otherwise the pages that one note's triggers touch would
  // be written to a temporary file.
  constexpr int never = -1;
  sqlite3_config(SQLITE_CONFIG_STMTJRNL_SPILL, never);
  return true;
}

/// The errno of the last failed file operation; 0 if unknown. For a failed commit, SQLite keeps it
/// in the log's file object only.
int systemError(sqlite3* handle) {
  int error = sqlite3_system_errno(handle);
  sqlite3_file* log = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (error == 0 && log != nullptr && log->pMethods != nullptr) {
    log->pMethods->xFileControl(log, SQLITE_FCNTL_LAST_ERRNO, &error);
  }
  return error;
}

sqlite3_file* fileOf(sqlite3* handle) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(handle, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  return file;
}

[[noreturn]] void throwError(sqlite3* handle, int code) {
  if (handle == nullptr) throw Error(code & 0xff, 0, sqlite3_errstr(code));
  throw Error(code & 0xff, systemError(handle), sqlite3_errmsg(handle));
}

}  // namespace

Error::Error(int code, int systemError, const std::string& detail)
    : std::runtime_error(sentence(code, systemError, detail)), code_(code) {}

Error::Error(const std::string& sentence) : std::runtime_error(sentence), code_(SQLITE_CANTOPEN) {}

Query::Query(Connection& connection, sqlite3_stmt* statement)
    : connection_(&connection), statement_(statement) {
  ++connection.statementsRun_;
}

Query::Query(Query&& other) noexcept
    : connection_(other.connection_), statement_(std::exchange(other.statement_, nullptr)) {}

Query::~Query() {
  if (statement_ != nullptr) connection_->giveBack(statement_);
}

Query& Query::bind(int parameter, std::int64_t value) {
  if (sqlite3_bind_int64(statement_, parameter, value) != SQLITE_OK) connection_->fail();
  return *this;
}

Query& Query::bind(int parameter, double value) {
  if (sqlite3_bind_double(statement_, parameter, value) != SQLITE_OK) connection_->fail();
  return *this;
}

Query& Query::bind(int parameter, std::string_view text) {
  // An empty view may have a null pointer, which SQLite would bind as NULL.
  const char* bytes = text.data() != nullptr ? text.data() : "";
  if (sqlite3_bind_text64(statement_, parameter, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8) !=
      SQLITE_OK) {
    connection_->fail();
  }
  return *this;
}

Query& Query::bindNull(int parameter) {
  if (sqlite3_bind_null(statement_, parameter) != SQLITE_OK) connection_->fail();
  return *this;
}

int Query::parameterCount() const {
  return sqlite3_bind_parameter_count(statement_);
}

bool Query::step() {
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) connection_->fail();
  return false;
}

void Query::run() {
  while (step()) {
  }
}

void Query::visit(const std::function<void(const Row&)>& visitor) {
  const auto* const outer = std::exchange(connection_->visitor_, &visitor);
  const int code = sqlite3_step(statement_);
  connection_->visitor_ = outer;
  if (const auto failure = std::exchange(connection_->visitorFailure_, nullptr)) {
    std::rethrow_exception(failure);
  }
  if (code != SQLITE_ROW) connection_->fail();
}

void Connection::visitRow(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  auto* const self = static_cast<Connection*>(sqlite3_user_data(context));
  try {
    (*self->visitor_)(Row(values));
  } catch (...) {  // SQLite's own frames must not be unwound
    self->visitorFailure_ = std::current_exception();
    sqlite3_result_error_code(context, SQLITE_ABORT);
  }
}

bool Row::isNull(int column) const {
  return sqlite3_value_type(values_[column]) == SQLITE_NULL;
}

std::int64_t Row::integer(int column) const {
  return sqlite3_value_int64(values_[column]);
}

double Row::real(int column) const {
  return sqlite3_value_double(values_[column]);
}

std::string_view Row::text(int column) const {
  const auto* bytes = static_cast<const char*>(sqlite3_value_blob(values_[column]));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_value_bytes(values_[column]))};
}

std::optional<double> Row::optionalReal(int column) const {
  const double value = real(column);  // 0 for NULL
  if (value == 0 && isNull(column)) return std::nullopt;
  return value;
}

Query& Query::reset() {
  sqlite3_reset(statement_);
  ++connection_->statementsRun_;
  return *this;
}

bool Query::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

std::int64_t Query::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

double Query::real(int column) const {
  return sqlite3_column_double(statement_, column);
}

std::string_view Query::text(int column) const {
  // Reads the bytes in place; sqlite3_column_text would copy them to append a NUL.
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, column));
  if (bytes == nullptr) return {};
  return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

std::optional<double> Query::optionalReal(int column) const {
  const double value = real(column);  // 0 for NULL
  if (value == 0 && isNull(column)) return std::nullopt;
  return value;
}

Connection::Connection(const std::string& path, Mode mode) {
  static const bool configured = configureLibrary();
  static_cast<void>(configured);
  const int access =
      mode == Mode::readOnly ? SQLITE_OPEN_READONLY | SQLITE_OPEN_URI : SQLITE_OPEN_READWRITE;
  const int flags = access | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  const int code = sqlite3_open_v2(path.c_str(), &handle_, flags, readAheadVFS());
  if (code == SQLITE_OK) {
    // An aggregate function, so that it sees the rows of which the whole WHERE clause is true.
    sqlite3_create_function(handle_, "visitRow", -1, SQLITE_UTF8 | SQLITE_DIRECTONLY, this, nullptr,
                            &Connection::visitRow, [](sqlite3_context*) {});
    return;
  }
  const Error error(code & 0xff, sqlite3_system_errno(handle_), sqlite3_errmsg(handle_));
  sqlite3_close_v2(handle_);
  throw error;
}

Connection::~Connection() {
  for (auto& [sql, cached] : statements_) sqlite3_finalize(cached.statement);
  sqlite3_close_v2(handle_);
}

Query Connection::query(std::string_view sql) {
  if (isRefused()) throw Error(refusal_);
  const auto found = statements_.find(sql);
  if (found != statements_.end() && !found->second.onLoan) {
    found->second.onLoan = true;
    return {*this, found->second.statement};
  }
  sqlite3_stmt* statement = nullptr;
  const bool keep = found == statements_.end();
  const unsigned flags = keep ? SQLITE_PREPARE_PERSISTENT : 0;
  if (sqlite3_prepare_v3(handle_, sql.data(), static_cast<int>(sql.size()), flags, &statement,
                         nullptr) != SQLITE_OK) {
    fail();
  }
  if (keep) statements_.emplace(sqlite3_sql(statement), Cached{statement, true});
  return {*this, statement};
}

void Connection::giveBack(sqlite3_stmt* statement) {
  const auto found = statements_.find(sqlite3_sql(statement));
  if (found == statements_.end() || found->second.statement != statement) {
    sqlite3_finalize(statement);  // the same statement was in use, so this one is not cached
    return;
  }
  sqlite3_reset(statement);
  sqlite3_clear_bindings(statement);
  found->second.onLoan = false;
}

void Connection::execute(const char* script) {
  if (isRefused()) throw Error(refusal_);
  ++statementsRun_;
  hasRunScripts_ = true;
  if (sqlite3_exec(handle_, script, nullptr, nullptr, nullptr) != SQLITE_OK) fail();
}

std::int64_t Connection::lastInsertedRow() const {
  return sqlite3_last_insert_rowid(handle_);
}

std::int64_t Connection::rowsChanged() const {
  return sqlite3_changes64(handle_);
}

void Connection::setBusyTimeout(int milliseconds) {
  sqlite3_busy_timeout(handle_, milliseconds);
}

std::string Connection::fileHeader(std::size_t size) const {
  std::string bytes(size, '\0');
  sqlite3_file* file = fileOf(handle_);
  const int code = file->pMethods->xRead(file, bytes.data(), static_cast<int>(size), 0);
  if (code == SQLITE_IOERR_SHORT_READ) return {};
  if (code != SQLITE_OK) throwError(handle_, code);
  return bytes;
}

std::int64_t Connection::dataVersion() {
  Query version = query("PRAGMA data_version");
  version.step();
  return version.integer(0);
}

void Connection::countLogPages() {
  const auto note = [](void* self, sqlite3*, const char*, int pages) {
    static_cast<Connection*>(self)->logPages_ = pages;
    return SQLITE_OK;
  };
  sqlite3_wal_hook(handle_, note, this);
}

void Connection::dropCachedPages() {
  sqlite3_db_release_memory(handle_);
}

void Connection::syncLog() {
  sqlite3_file* log = nullptr;
  sqlite3_file_control(handle_, "main", SQLITE_FCNTL_JOURNAL_POINTER, &log);
  if (log == nullptr || log->pMethods == nullptr) return;
  const int code = log->pMethods->xSync(log, SQLITE_SYNC_NORMAL);
  if (code != SQLITE_OK) throwError(handle_, code);
}

void Connection::fail() const {
  throwError(handle_, sqlite3_errcode(handle_));
}

TriggersOff::TriggersOff(Connection& connection) : connection_(connection) {
  sqlite3_db_config(connection_.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
}

TriggersOff::~TriggersOff() {
  sqlite3_db_config(connection_.handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 1, nullptr);
}

ExclusiveLock::ExclusiveLock(Connection& connection) : file_(fileOf(connection.handle())) {
  held_ = file_->pMethods->xLock(file_, SQLITE_LOCK_SHARED) == SQLITE_OK &&
          file_->pMethods->xLock(file_, SQLITE_LOCK_EXCLUSIVE) == SQLITE_OK;
}

ExclusiveLock::~ExclusiveLock() {
  file_->pMethods->xUnlock(file_, SQLITE_LOCK_NONE);
}

Transaction::Transaction(Connection& connection, Kind kind)
    : connection_(connection), writes_(kind == Kind::write) {
  connection_.query(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN").run();
}

Transaction::~Transaction() {
  if (open_) rollBack();
}

void Transaction::rollBack() {
  open_ = false;
  // A failed statement may already have rolled the transaction back.
  if (sqlite3_get_autocommit(connection_.handle()) != 0) return;
  sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Transaction::commit() {
  try {
    if (writes_ && connection_.beforeCommit_ != nullptr) {
      connection_.query(connection_.beforeCommit_).run();
    }
    connection_.query("COMMIT").run();
    open_ = false;
  } catch (const Error&) {
    rollBack();
    // If the log was written but its sync failed, the log holds a complete transaction, which the
    // next program that opens the database would take for committed. Truncating the log prevents
    // that.
    sqlite3_wal_checkpoint_v2(connection_.handle(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr,
                              nullptr);
    throw;
  }
}

}  // namespace tavimodel::sqlite

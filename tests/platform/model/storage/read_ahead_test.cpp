#include "platform/model/storage/read_ahead.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <utility>

#include "platform/model/storage/sqlite.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

int readCalls = 0;
const sqlite3_io_methods* systemMethods = nullptr;

/// Counts the system's reads of the files opened while it lives.
class CountedReads {
 public:
  CountedReads() {
    readCalls = 0;
    original_ = std::exchange(system_.xOpen, [](sqlite3_vfs* vfs, const char* path,
                                                sqlite3_file* file, int flags, int* used) {
      const int code = original_(vfs, path, file, flags, used);
      if (code != SQLITE_OK || (flags & SQLITE_OPEN_MAIN_DB) == 0) return code;
      static sqlite3_io_methods counting;
      systemMethods = file->pMethods;
      counting = *systemMethods;
      counting.xRead = [](sqlite3_file* from, void* to, int amount, sqlite3_int64 offset) {
        ++readCalls;
        return systemMethods->xRead(from, to, amount, offset);
      };
      file->pMethods = &counting;
      return code;
    });
  }
  ~CountedReads() { system_.xOpen = original_; }
  CountedReads(const CountedReads&) = delete;
  CountedReads& operator=(const CountedReads&) = delete;

 private:
  static inline decltype(sqlite3_vfs::xOpen) original_ = nullptr;
  sqlite3_vfs& system_ = *sqlite3_vfs_find(nullptr);
};

class ReadAhead : public testing::Test {
 protected:
  void SetUp() override {
    other.run(
        "PRAGMA page_size = 4096; PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; "
        "CREATE TABLE rows (id INTEGER PRIMARY KEY, text TEXT)");
    other.run(
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 300) "
        "INSERT INTO rows SELECT i, 'old' || hex(zeroblob(4000)) FROM n");
    other.run("PRAGMA wal_checkpoint(TRUNCATE)");
  }

  /// The first words of the rows, each once. Ends within the pages that have been read ahead, and
  /// begins within those of the last scan.
  std::string scan(sqlite::Connection& connection) {
    sqlite::Query query =
        connection.query("SELECT text FROM rows WHERE id >= ? ORDER BY id LIMIT 50");
    query.bind(1, next);
    std::string result;
    for (; query.step(); ++next) {
      const std::string word(query.text(0).substr(0, 3));
      if (result.find(word) == std::string::npos) result += word;
    }
    next -= 4;
    return result;
  }

  const support::ThrowawayHome home;
  const std::string path = home.path() / "a.sqlite";
  support::ForeignClient other{path};
  std::int64_t next = 1;
};

TEST_F(ReadAhead, ReadsManyPagesWithOneCall) {
  const CountedReads counted;
  sqlite::Connection connection(path, sqlite::Connection::Mode::readWrite);
  EXPECT_EQ(scan(connection), "old");
  EXPECT_GT(readCalls, 0);
  EXPECT_LT(readCalls, 50) << "each row is on two pages or more";
}

TEST_F(ReadAhead, KeepsNoPageBeyondItsTransaction) {
  sqlite::Connection connection(path, sqlite::Connection::Mode::readWrite);
  connection.execute("PRAGMA cache_size = 10");
  EXPECT_EQ(scan(connection), "old");
  for (const char* text : {"new", "odd"}) {
    other.run("UPDATE rows SET text = '" + std::string(text) + "' || substr(text, 4)");
    other.run("PRAGMA wal_checkpoint(TRUNCATE)");
    EXPECT_EQ(scan(connection), text);
  }
}

TEST_F(ReadAhead, ReadsOneStateWhileAnotherProgramWritesTheFile) {
  sqlite::Connection connection(path, sqlite::Connection::Mode::readWrite);
  connection.execute("PRAGMA cache_size = 10");
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::read);
  EXPECT_EQ(scan(connection), "old");
  other.run("UPDATE rows SET text = 'new' || substr(text, 4)");
  other.run("PRAGMA wal_checkpoint(PASSIVE)");
  EXPECT_EQ(scan(connection), "old");
}

TEST_F(ReadAhead, SeesItsOwnChanges) {
  sqlite::Connection connection(path, sqlite::Connection::Mode::readWrite);
  connection.execute("PRAGMA cache_size = 10");
  EXPECT_EQ(scan(connection), "old");
  sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
  connection.query("UPDATE rows SET text = 'own' || substr(text, 4)").run();
  EXPECT_EQ(scan(connection), "own");
  transaction.commit();
  connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
  EXPECT_EQ(scan(connection), "own");
}

}  // namespace
}  // namespace tavimodel

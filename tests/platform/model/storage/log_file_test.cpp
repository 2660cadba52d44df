#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

#include "platform/model/storage/sqlite.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;
using sqlite::Connection;
using sqlite::Transaction;

class Log : public testing::Test {
 protected:
  void SetUp() override {
    other.run(
        "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; "
        "CREATE TABLE rows (id INTEGER PRIMARY KEY, text TEXT)");
  }

  /// Changes rows in one transaction, which is committed or not, and is larger than the cache or
  /// not.
  void change(Connection& connection) {
    const bool commits = random() % 3 != 0;
    Transaction transaction(connection, Transaction::Kind::write);
    const auto rows = static_cast<std::int64_t>(random() % (random() % 4 == 0 ? 200 : 5));
    change(connection, rows);
    if (random() % 3 == 0) {
      connection.query("SAVEPOINT inner").run();
      change(connection, rows);
      connection.query("ROLLBACK TO inner").run();
      connection.query("RELEASE inner").run();
      if (random() % 2 == 0) change(connection, 2);
    }
    if (commits) transaction.commit();
  }
  void change(Connection& connection, std::int64_t rows) {
    constexpr const char* replace =
        "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?1) "
        "INSERT OR REPLACE INTO rows SELECT abs(random()) % 300, hex(randomblob(400)) FROM n";
    constexpr const char* add =
        "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?1) "
        "INSERT INTO rows (text) SELECT hex(randomblob(400)) FROM n";
    connection.query(random() % 2 == 0 ? replace : add).bind(1, rows).run();
  }

  static std::string rows(support::ForeignClient&& client) {
    return client.value(
        "SELECT (SELECT group_concat(id || substr(text, 1, 9)) FROM rows) || integrity_check "
        "FROM pragma_integrity_check");
  }

  /// The rows in a copy of the files, whose log SQLite has to recover.
  std::string recovered() const {
    const fs::path copy = home.path() / "copy.sqlite";
    for (const char* end : {"", "-wal"}) {
      fs::copy_file(database.string() + end, copy.string() + end,
                    fs::copy_options::overwrite_existing);
    }
    fs::remove(copy.string() + "-shm");
    return rows(support::ForeignClient(copy));
  }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  const fs::path database = home.path() / "rows.sqlite";
  support::ForeignClient other{database};
  std::mt19937 random{1};  // NOLINT(cert-msc51-cpp): the same each time
};

TEST_F(Log, HasWhatWasCommittedWhoeverWritesInBetween) {
  Connection ours(database.string(), Connection::Mode::readWrite);
  ours.query("PRAGMA cache_size = 10").run();
  for (int round = 0; round < 100; ++round) {
    const char* synchronous =
        random() % 2 == 0 ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL";
    ours.query(synchronous).run();
    change(ours);
    if (random() % 2 == 0) other.run("INSERT INTO rows (text) VALUES ('theirs')");
    sqlite::Query read =
        ours.query("SELECT group_concat(id || substr(text, 1, 9)) || 'ok' FROM rows");
    read.step();
    const std::string expected(read.text(0));
    read.reset();
    ASSERT_TRUE(rows(support::ForeignClient(database)) == expected) << round;
    ASSERT_TRUE(recovered() == expected) << round;
    if (random() % 3 == 0) other.run("PRAGMA wal_checkpoint(RESTART)");
  }
}

}  // namespace
}  // namespace tavimodel

#include "platform/model/storage/kept_connection.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "platform/model/search/search_index.h"
#include "platform/model/storage/open_database.h"
#include "platform/model/storage/write_ahead_log.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;

class Kept : public testing::Test {
 protected:
  void SetUp() override {
    openDatabase(home.data(), DatabaseAccess::readWrite);
    fs::copy_file(home.database(), older);
    support::ForeignClient(home.database()).run("CREATE TABLE later (a)");
    auto connection = openDatabase(home.data(), DatabaseAccess::readWrite);
    sqlite::Transaction transaction(*connection, sqlite::Transaction::Kind::write);
    connection->query("INSERT INTO note (text) VALUES ('in the log')").run();
    transaction.commit();
    const std::int64_t version = connection->dataVersion();
    keep(std::move(connection), version);
  }

  void keep(std::unique_ptr<sqlite::Connection> connection, std::int64_t version) {
    while (!DatabaseIdentity::of(home.data()).isSettled()) std::this_thread::yield();
    kept->keep(std::move(connection), home.data(), DatabaseIdentity::of(home.data()), version);
  }

  std::unique_ptr<sqlite::Connection> take() {
    return kept->take(home.data(), DatabaseIdentity::of(home.data()));
  }

  static void commit(sqlite::Connection& connection, const char* sql) {
    sqlite::Transaction transaction(connection, sqlite::Transaction::Kind::write);
    connection.query(sql).run();
    transaction.commit();
  }

  void expectSettingsOfANewOne(sqlite::Connection& connection) const {
    const auto fresh = openDatabase(home.data(), DatabaseAccess::readWrite);
    for (const char* setting : {"PRAGMA synchronous", "PRAGMA busy_timeout", "PRAGMA secure_delete",
                                "PRAGMA cache_size"}) {
      sqlite::Query ours = connection.query(setting);
      sqlite::Query theirs = fresh->query(setting);
      EXPECT_TRUE(ours.step() && theirs.step());
      EXPECT_EQ(ours.integer(0), theirs.integer(0)) << setting;
    }
  }

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  const fs::path older = home.path() / "older";
  std::unique_ptr<KeptConnection> kept = std::make_unique<KeptConnection>(updateSearchIndex);
};

TEST_F(Kept, IsTakenAgain) {
  EXPECT_NE(take(), nullptr);
}

TEST_F(Kept, IsNotTakenForAnotherFile) {
  fs::rename(older, home.database());
  EXPECT_EQ(take(), nullptr);
}

// A client that has received its answer may write before the server checks the files.
TEST_F(Kept, IsNotTakenAfterACommitThatTheFilesDoNotShow) {
  auto connection = take();
  const std::int64_t version = connection->dataVersion();
  support::ForeignClient(home.database()).run("PRAGMA user_version = 99");
  keep(std::move(connection), version);
  EXPECT_EQ(take(), nullptr);
}

// A call may come between two slices of idle work. The next slice has to go on as if it had not.
TEST_F(Kept, IsTakenAsItWasBetweenAllSlicesOfWork) {
  auto connection = take();
  commit(*connection,
         "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 4000) "
         "INSERT INTO note (text) SELECT hex(randomblob(150)) FROM n");
  keep(std::move(connection), kept->dataVersion());
  int slices = 0;
  for (; kept->work(); ++slices) {
    const DatabaseIdentity before = DatabaseIdentity::of(home.data());
    connection = kept->take(home.data(), before);
    ASSERT_NE(connection, nullptr) << slices;
    expectSettingsOfANewOne(*connection);
    EXPECT_LT(connection->logPages(), 3000);
    kept->keep(std::move(connection), home.data(), before, kept->dataVersion());
  }
  EXPECT_GT(slices, 3);
  EXPECT_EQ(logSize(home.database()), 0U);
  support::ForeignClient client(home.database());
  EXPECT_EQ(client.value("SELECT count(*) FROM noteSummary WHERE searchRow IS NULL"), "0");
  EXPECT_EQ(client.value("SELECT count(*) FROM note"), "4001");
  EXPECT_EQ(client.value("PRAGMA integrity_check"), "ok");
}

/// With a log so long that it is written back between two calls, and enough notes to be indexed.
class KeptInAStream : public Kept {
 protected:
  void SetUp() override {
    Kept::SetUp();
    writeMuch();
  }
  void writeMuch() {
    auto connection = take();
    ASSERT_NE(connection, nullptr);
    const DatabaseIdentity before = DatabaseIdentity::of(home.data());
    commit(*connection,
           "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 80) "
           "INSERT INTO note (text) SELECT printf('%.*c', 200000, 'x') FROM n");
    kept->keep(std::move(connection), home.data(), before, kept->dataVersion());
  }
  std::string header() const {
    std::string bytes(100, '\0');
    std::ifstream(home.database(), std::ios::binary).read(bytes.data(), 100);
    return bytes;
  }
};

TEST_F(KeptInAStream, IsTakenAgainAsItWas) {
  EXPECT_GT(fs::file_size(home.database()), 10'000'000U) << "the log is written back";
  const auto connection = take();
  ASSERT_NE(connection, nullptr);
  expectSettingsOfANewOne(*connection);
}

// Within one tick of the file system's clock.
TEST_F(KeptInAStream, IsNotTakenWhenTheFileWasOverwrittenAtOnce) {
  std::fstream(home.database(), std::ios::binary | std::ios::in | std::ios::out) << "SQLite";
  EXPECT_EQ(take(), nullptr);
}

TEST_F(KeptInAStream, GivesEachLogACounterOfItsOwn) {
  const std::string copy = header();
  writeMuch();
  const auto connection = take();
  ASSERT_NE(connection, nullptr);
  commit(*connection, "DELETE FROM note");
  const LogOrigin log = originOf(logOf(home.database()));
  EXPECT_TRUE(belongTogether(header(), log));
  EXPECT_FALSE(belongTogether(copy, log));
}

TEST_F(Kept, DoesNotWriteItsLogBackForAnotherFile) {
  const std::uintmax_t size = logSize(home.database());
  fs::rename(older, home.database());
  kept.reset();
  EXPECT_EQ(logSize(home.database()), size);
}

}  // namespace
}  // namespace tavimodel

#include "platform/model/storage/kept_connection.h"

#include <gtest/gtest.h>

#include <filesystem>
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

  support::ThrowawayHome home{support::ThrowawayHome::On::memory};
  const fs::path older = home.path() / "older";
  std::unique_ptr<KeptConnection> kept = std::make_unique<KeptConnection>(updateSearchIndex);
};

TEST_F(Kept, IsTakenAgain) {
  EXPECT_NE(kept->take(home.data()), nullptr);
}

TEST_F(Kept, IsNotTakenForAnotherFile) {
  fs::rename(older, home.database());
  EXPECT_EQ(kept->take(home.data()), nullptr);
}

// A client that has received its answer may write before the server checks the files.
TEST_F(Kept, IsNotTakenAfterACommitThatTheFilesDoNotShow) {
  auto connection = kept->take(home.data());
  const std::int64_t version = connection->dataVersion();
  support::ForeignClient(home.database()).run("PRAGMA user_version = 99");
  keep(std::move(connection), version);
  EXPECT_EQ(kept->take(home.data()), nullptr);
}

TEST_F(Kept, DoesNotWriteItsLogBackForAnotherFile) {
  const std::uintmax_t size = logSize(home.database());
  fs::rename(older, home.database());
  kept.reset();
  EXPECT_EQ(logSize(home.database()), size);
}

}  // namespace
}  // namespace tavimodel

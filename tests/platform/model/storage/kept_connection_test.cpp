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
    while (!DatabaseIdentity::of(home.data()).isSettled()) std::this_thread::yield();
    kept->keep(std::move(connection), home.data(), DatabaseIdentity::of(home.data()));
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

TEST_F(Kept, DoesNotWriteItsLogBackForAnotherFile) {
  const std::uintmax_t size = logSize(home.database());
  fs::rename(older, home.database());
  kept.reset();
  EXPECT_EQ(logSize(home.database()), size);
}

}  // namespace
}  // namespace tavimodel

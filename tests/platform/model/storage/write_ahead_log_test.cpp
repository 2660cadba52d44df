// Whether a log that a crash left is accepted or refused depends on the contents of both files.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "platform/model/objects/core_data_stack.h"
#include "platform/model/storage/schema.h"
#include "platform/model/storage/write_ahead_log.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

namespace fs = std::filesystem;
using support::ForeignClient;

std::string bytesOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class LeftLog : public testing::Test {
 protected:
  /// Copies the database and its log as a crash at this moment would leave them.
  struct Pair {
    std::string database, log;
  };
  Pair now() const { return {bytesOf(path()), bytesOf(logOf(path()))}; }
  fs::path path() const { return home.path() / "a.sqlite"; }

  bool belong(const std::string& database, const std::string& log) const {
    std::ofstream(home.path() / "log", std::ios::binary) << log;
    return belongTogether(database.substr(0, 100), originOf(home.path() / "log"));
  }

  std::unique_ptr<ForeignClient> open() const {
    auto client = std::make_unique<ForeignClient>(path());
    client->run("PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF");
    return client;
  }

  support::ThrowawayHome home;
};

// Our connections, and others that rarely change page 1, write in turn; the log is checkpointed
// partly or completely, or restarted.
TEST_F(LeftLog, IsNeverRefusedBesideTheDatabaseThatItWasWrittenFor) {
  std::mt19937 random(5);
  std::vector<std::unique_ptr<ForeignClient>> clients;
  for (int i = 0; i < 3; ++i) clients.push_back(open());
  clients[0]->run("CREATE TABLE t (a, b)");
  int logs = 0;
  for (int step = 0; step < 600; ++step) {
    auto& client = clients[random() % clients.size()];
    switch (random() % 8) {
      case 0:
        client.reset();  // the last connection to close would checkpoint the log
        client = open();
        break;
      case 1:
        client->run("PRAGMA wal_checkpoint(PASSIVE)");
        break;
      case 2:
        client->run("PRAGMA wal_checkpoint(TRUNCATE)");
        break;
      case 3:
        client->run("BEGIN; INSERT INTO t VALUES (zeroblob(9000), 1)");
        client->run(random() % 4 == 0 ? "ROLLBACK" : std::string(touchFirstPage) + "; COMMIT");
        break;
      case 4:
        client->run("DELETE FROM t WHERE rowid % 7 = 0");
        break;
      default:
        client->run("UPDATE t SET b = b + 1 WHERE rowid = 1");
    }
    const Pair pair = now();
    ASSERT_TRUE(belong(pair.database, pair.log)) << step;
    logs += pair.log.empty() ? 0 : 1;
  }
  EXPECT_GT(logs, 300);
}

TEST_F(LeftLog, IsRefusedBesideAnotherDatabaseOrAnotherState) {
  const std::string commit = std::string(touchFirstPage) + "; COMMIT";
  const auto write = [&] {
    open()->run("BEGIN; CREATE TABLE IF NOT EXISTS t (a); INSERT INTO t VALUES (1); " + commit);
  };
  write();
  const std::string oldest = now().database;
  for (int i = 0; i < 3; ++i) write();
  const std::string older = now().database;
  write();
  auto client = open();
  client->run("BEGIN; INSERT INTO t VALUES (2); " + commit);
  const Pair left = now();
  client->run("PRAGMA wal_checkpoint(TRUNCATE)");
  client.reset();
  write();
  const std::string newer = now().database;
  ForeignClient(path()).run("VACUUM INTO '" + (home.path() / "copy").string() + "'");

  EXPECT_TRUE(belong(left.database, left.log));
  for (const std::string& other : {oldest, older, newer, bytesOf(home.path() / "copy"),
                                   std::string(), std::string(4096, 'x')}) {
    EXPECT_FALSE(belong(other, left.log));
    EXPECT_TRUE(belong(other, "")) << "without a log there is nothing to refuse";
    EXPECT_TRUE(belong(other, left.log.substr(0, 1000))) << "no commit is whole";
  }
}

}  // namespace
}  // namespace tavimodel

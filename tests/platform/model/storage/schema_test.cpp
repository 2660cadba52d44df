#include "platform/model/storage/schema.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>

#include "platform/model/storage/sqlite.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

// The second process finds no schema, and waits for the first, which creates it meanwhile.
TEST(UpgradeSchema, LeavesToAnotherProcessWhatThatWasQuickerToMake) {
  const support::ThrowawayHome home;
  const std::string path = home.path() / "a.sqlite";
  support::ForeignClient other(path);
  other.run("PRAGMA journal_mode = WAL; BEGIN IMMEDIATE");
  sqlite::Connection slow(path, sqlite::Connection::Mode::readWrite);
  std::function<void()> meanwhile = [&] {
    other.run("ROLLBACK");
    sqlite::Connection quick(path, sqlite::Connection::Mode::readWrite);
    upgradeSchema(quick);
    quick.execute("INSERT INTO note (text) VALUES ('first')");
  };
  const auto wait = [](void* action, int) {
    (*static_cast<std::function<void()>*>(action))();
    return 1;
  };
  sqlite3_busy_handler(slow.handle(), wait, &meanwhile);
  EXPECT_NO_THROW(upgradeSchema(slow));
  EXPECT_EQ(other.value("SELECT text FROM note"), "first");
}

}  // namespace
}  // namespace tavimodel

#include "platform/model/storage/sqlite.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel::sqlite {
namespace {

class Visiting : public testing::Test {
 protected:
  Visiting() {
    connection.execute(
        "CREATE TABLE item (id INTEGER PRIMARY KEY, name TEXT, weight REAL);"
        "INSERT INTO item VALUES (1, 'one', 0.5), (2, NULL, NULL), (3, '', 0), (4, 'four', 4)");
  }

  support::ThrowawayHome home;
  std::string file = home.path() / "items.sqlite";
  support::ForeignClient creator{file};
  Connection connection{file, Connection::Mode::readWrite};
};

TEST_F(Visiting, SeesTheRowsThatStepsReturn) {
  // SQLite evaluates subqueries after other conditions.
  const std::string rest =
      " FROM item WHERE EXISTS (SELECT 1 FROM item other WHERE other.id = item.id + 1) AND id > 1";
  std::vector<std::int64_t> stepped, visited;
  Query step = connection.query("SELECT id, name, weight" + rest);
  while (step.step()) stepped.push_back(step.integer(0));
  connection.query("SELECT visitRow(id, name, weight)" + rest).visit([&](const Row& row) {
    visited.push_back(row.integer(0));
    EXPECT_EQ(row.isNull(1), row.integer(0) == 2);
    EXPECT_EQ(row.text(1), "");
    EXPECT_EQ(row.optionalReal(2), row.integer(0) == 2 ? std::nullopt : std::optional(0.0));
  });
  EXPECT_EQ(visited, stepped);
  EXPECT_EQ(visited, (std::vector<std::int64_t>{2, 3}));
  connection.query("SELECT visitRow(id) FROM item WHERE 0").visit([](const Row&) { FAIL(); });
}

TEST_F(Visiting, CanBeNested) {
  std::string seen;
  connection.query("SELECT visitRow(id) FROM item WHERE id < 3").visit([&](const Row& row) {
    seen += std::to_string(row.integer(0));
    connection.query("SELECT visitRow(name) FROM item WHERE id = 4").visit([&](const Row& inner) {
      seen += inner.text(0);
    });
    seen += ' ';
  });
  EXPECT_EQ(seen, "1four 2four ");
}

TEST_F(Visiting, PassesFailuresOn) {
  const std::string all = "SELECT visitRow(id) FROM item";
  int visits = 0;
  EXPECT_THROW(connection.query(all).visit([&](const Row&) {
    if (++visits == 2) throw std::out_of_range("the visitor's own");
  }),
               std::out_of_range);
  EXPECT_EQ(visits, 2);
  // SQLite's own, in the third row: an integer overflow.
  visits = 0;
  EXPECT_THROW(
      connection.query("SELECT visitRow(abs(iif(id < 3, id, -9223372036854775808))) FROM item")
          .visit([&](const Row&) { ++visits; }),
      Error);
  EXPECT_EQ(visits, 2);
  visits = 0;
  connection.query(all).visit([&](const Row&) { ++visits; });
  EXPECT_EQ(visits, 4) << "the statement can run again";
}

}  // namespace
}  // namespace tavimodel::sqlite

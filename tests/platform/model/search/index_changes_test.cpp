#include "platform/model/search/index_changes.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "platform/model/objects/opened_model.h"
#include "platform/model/search/slice_blocks.h"
#include "platform/text/utf8.h"

namespace tavimodel {
namespace {

std::set<Trigram> trigramsOf(std::string_view text, std::string_view title) {
  std::set<Trigram> trigrams;
  const auto insert = [&](Trigram trigram) { trigrams.insert(trigram); };
  forEachTrigram(text, insert);
  forEachTrigram(title, insert);
  return trigrams;
}

TEST(TrigramChanges, LeadFromOneTextToTheOther) {
  std::mt19937 random(1);
  // Scalars that share leading or trailing bytes of UTF-8.
  const std::u32string scalars = U"ab\nÄĄäꄄ字\x1F604";
  const auto text = [&](std::size_t most) {
    std::string bytes;
    for (std::size_t length = random() % (most + 1); length > 0; --length) {
      platform::text::appendScalar(bytes, scalars[random() % (random() % 2 == 0 ? 3 : 9)]);
    }
    return bytes;
  };
  for (int round = 0; round < 20'000; ++round) {
    const std::string title = text(4);
    const std::string head = std::string(random() % 200, 'a') + text(6);
    const std::string tail = text(6) + std::string(random() % 200, 'b');
    const std::string before = head + text(4) + tail;
    const std::string after = head + text(4) + tail;
    const auto change = TrigramChange::between(before, after, title);
    ASSERT_TRUE(change);
    std::set<Trigram> trigrams = trigramsOf(before, title);
    trigrams.insert(change->gained.begin(), change->gained.end());
    for (const Trigram lost : change->lost) trigrams.erase(lost);
    ASSERT_EQ(trigrams, trigramsOf(after, title)) << before << " -> " << after << ", " << title;
  }
}

TEST(TrigramChanges, AreOfShortDifferences) {
  const std::string many(100'000, 'x');
  EXPECT_TRUE(TrigramChange::between(many + "old" + many, many + "new" + many, ""));
  EXPECT_FALSE(TrigramChange::between("old" + many + "old", "new" + many + "new", ""));
  EXPECT_FALSE(TrigramChange::between("", many, ""));
}

class SliceChanges : public OpenedModel {
 protected:
  static Trigram trigram(const std::string& bytes) { return *trigramsOf(bytes, "").begin(); }

  /// A slice whose blocks each hold some of the trigrams "aba" to "zbz", with position 1.
  void SetUp() override {
    OpenedModel::SetUp();
    SliceWriter writer(connection(), slice);
    PositionSet one;
    one.add(1);
    for (char first = 'a'; first <= 'z'; ++first) {
      for (char last = 'a'; last <= 'z'; ++last) {
        writer.add(fmt::format("{}b{}", first, last), PositionSet::Encoding(one).bytes());
      }
    }
    writer.finish(3);
  }

  sqlite::Connection& connection() { return stack->connection(); }

  PositionSet notesWith(const std::string& bytes) {
    sqlite::Query row = connection().query("SELECT firsts FROM searchSlice WHERE slice = 7");
    row.step();
    return SliceReader(connection(), slice, row.text(0)).notesWith({trigram(bytes)});
  }

  static constexpr std::int64_t slice = 7;
  static constexpr std::int64_t firstRow = slice * sliceCapacity;
};

TEST_F(SliceChanges, AreFoundAfterwards) {
  IndexChanges changes;
  changes.add(firstRow + 1, {{trigram("mbm"), trigram("\n\n\n"), trigram("zzz")},
                             {trigram("aba"), trigram("nba"), trigram("qqq")}});
  changes.add(firstRow + 2, {{trigram("aaa"), trigram("aba"), trigram("mbm")}, {trigram("nba")}});
  changes.write(connection());
  const std::pair<const char*, std::vector<int>> expected[] = {
      {"\n\n\n", {1}}, {"aaa", {2}}, {"aba", {2}}, {"abb", {1}}, {"mbm", {1, 2}},
      {"nba", {}},     {"nbb", {1}}, {"qqq", {}},  {"zbz", {1}}, {"zzz", {1}},
  };
  for (const auto& [bytes, positions] : expected) {
    PositionSet notes;
    for (const int position : positions) notes.add(position);
    EXPECT_EQ(notesWith(bytes), notes) << bytes;
  }
  // A trigram that no note has is nowhere.
  sqlite::Query kept = connection().query(
      "SELECT (SELECT count(*) FROM searchBlock WHERE instr(entries, 'nba')) + "
      "(SELECT count(*) FROM searchSlice WHERE instr(firsts, 'nba'))");
  kept.step();
  EXPECT_EQ(kept.integer(0), 0);
}

TEST_F(SliceChanges, OfWhichASliceHasNoRoomAreIndexedAgain) {
  KVNote::noteWithText("# one", context());
  KVNote::noteWithText("# two", context());
  context().save();
  connection().query("UPDATE noteSummary SET searchRow = ?1 + note").bind(1, firstRow).run();
  const auto indexed = [&] {
    sqlite::Query count = connection().query("SELECT count(searchRow) FROM noteSummary");
    count.step();
    return count.integer(0);
  };
  TrigramChange large;  // a hundred bytes each, in one block
  for (char32_t scalar = 0x4E00; scalar < 0x4E00 + 2000; ++scalar) {
    std::string bytes = "zz";
    platform::text::appendScalar(bytes, scalar);
    large.gained.push_back(trigram(bytes));
  }
  IndexChanges changes;
  changes.add(firstRow + 1, large);
  changes.write(connection());
  EXPECT_EQ(indexed(), 1) << "too much for a block";
  connection()
      .query("UPDATE noteSummary SET searchRow = ?1 WHERE searchRow IS NOT NULL")
      .bind(1, firstRow + sliceCapacity)
      .run();
  for (int other = 1; other <= 60; ++other) changes.add(firstRow + other * sliceCapacity, large);
  EXPECT_TRUE(changes.areMany());
  changes.write(connection());
  EXPECT_FALSE(changes.areMany());
  EXPECT_EQ(indexed(), 0) << "there is no such slice";
}

}  // namespace
}  // namespace tavimodel

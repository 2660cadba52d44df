#include "platform/model/search/search_index.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <set>

#include "platform/model/objects/opened_model.h"
#include "platform/model/search/slice_positions.h"
#include "platform/model/search/trigrams.h"
#include "platform/text/utf8.h"
#include "support/foreign_client.h"

namespace tavimodel {
namespace {

class Index : public OpenedModel {
 protected:
  void insertNumbered(int from, int to) {
    support::ForeignClient(home.database())
        .run(fmt::format("WITH RECURSIVE n(i) AS (SELECT {} UNION ALL SELECT i + 1 FROM n WHERE i "
                         "< {}) INSERT INTO note (id, title, text) SELECT i, 'n', printf('word "
                         "number%05dx', i) FROM n",
                         from, to));
  }

  bool update(int milliseconds) {
    context().reset();
    return catchUp(stack->connection(), updateSearchIndex,
                   {.fewestNotes = 1, .milliseconds = milliseconds, .notesInSlice = 1024});
  }

  std::vector<std::int64_t> notesWith(const std::string& term) {
    const auto candidates = SearchIndex(stack->connection()).candidates(term, SIZE_MAX);
    return candidates ? candidates->notes : std::vector<std::int64_t>{};
  }

  std::string value(const char* sql) { return support::ForeignClient(home.database()).value(sql); }

  bool isIndexed(const std::string& trigram) {
    const std::string holds = fmt::format(", CAST('{}' AS BLOB)) > 0", trigram);
    return value(("SELECT (SELECT count(*) FROM searchBlock WHERE instr(entries" + holds +
                  ") + (SELECT count(*) FROM searchSlice WHERE instr(firsts" + holds + ")")
                     .c_str()) != "0";
  }

  /// Whether the bytes of the database or its log contain it.
  bool isOnDisk(std::string_view bytes) {
    for (const char* suffix : {"", "-wal"}) {
      std::ifstream file(home.database().string() + suffix, std::ios::binary);
      const std::string all(std::istreambuf_iterator<char>(file), {});
      if (all.find(bytes) != std::string::npos) return true;
    }
    return false;
  }
};

TEST(Positions, AreReadAsTheyWereWritten) {
  std::mt19937 random(1);
  for (const int gap : {1, 2, 5, 9, 60, 300, 2000}) {
    PositionSet set;
    std::uniform_int_distribution<int> below(0, gap - 1);
    for (int at = below(random); at < sliceCapacity; at += 1 + below(random)) set.add(at);
    const PositionSet::Encoding encoding(set);
    EXPECT_EQ(PositionSet::decoded(encoding.bytes()), set) << "gaps up to " << gap;
    EXPECT_LE(encoding.bytes().size(), sliceCapacity / 8U);
  }
}

TEST(Trigrams, AreAllThatATextHas) {
  std::mt19937 random(1);
  const std::u32string scalars = U"ab\n\x7Fé字\x1F600";
  for (int round = 0; round < 500; ++round) {
    std::u32string text;
    std::string bytes;
    while (random() % 16 != 0) {
      text += scalars[random() % (round % 2 == 0 ? 3 : scalars.size())];
      platform::text::appendScalar(bytes, text.back());
    }
    std::string found;
    forEachTrigram(bytes, [&](Trigram trigram) { found += utf8Of(trigram); });
    std::string expected;
    for (std::size_t i = 0; i + 2 < text.size(); ++i) {
      for (const char32_t c : text.substr(i, 3)) platform::text::appendScalar(expected, c);
    }
    EXPECT_EQ(found, expected) << bytes;
  }
}

TEST_F(Index, GivesEachNoteThroughManySlicesAndTheirMerging) {
  constexpr int notes = 2600;
  for (int i = 0; i < notes; i += 65) {
    insertNumbered(i + 1, i + 65);
    update(100);
  }
  EXPECT_LE(std::stoi(value("SELECT count(*) FROM searchSlice")), notes / 512 + 9);
  for (int i = 1; i <= notes; i += 37) {
    EXPECT_EQ(notesWith(fmt::format("number{:05}x", i)), std::vector<std::int64_t>{i});
  }
  EXPECT_EQ(notesWith("WORD").size(), std::size_t{notes});
  EXPECT_EQ(notesWith("nowhere").size(), 0U);
}

TEST_F(Index, GivesEachNoteOfASliceThatIsFilledUpARowOfItsOwn) {
  insertNumbered(1, 70);
  update(1000);
  support::ForeignClient(home.database()).run("DELETE FROM note WHERE id = 3");
  update(1000);
  insertNumbered(71, 3000);
  while (update(5)) {
  }
  EXPECT_EQ(value("SELECT count(DISTINCT searchRow) FROM noteSummary"), "2999");
  EXPECT_EQ(value("SELECT sum(notes) FROM searchSlice"), "2999");
  for (int i = 4; i <= 3000; i += 61) {
    EXPECT_EQ(notesWith(fmt::format("number{:05}x", i)), std::vector<std::int64_t>{i});
  }
}

TEST_F(Index, OffersATextOfTooManyTrigramsForEveryTerm) {
  std::string text;
  for (char32_t scalar = 0x20000; scalar < 0x31000; ++scalar) {
    platform::text::appendScalar(text, scalar);
  }
  text += "the end";
  insertNumbered(1, 3);
  support::ForeignClient(home.database())
      .run(fmt::format("INSERT INTO note (id, text) VALUES (9, '{}')", text));
  update(1000);
  EXPECT_EQ(value("SELECT count(*) FROM noteSummary WHERE searchRow IS NULL"), "0");
  EXPECT_EQ(notesWith("the end"), std::vector<std::int64_t>{9});
  EXPECT_EQ(notesWith("number00002"), (std::vector<std::int64_t>{2, 9}));
}

// Checks for three letters of the word, since the index stores texts as trigrams.
TEST_F(Index, ForgetsTheTextsOfDeletedAndLockedNotesWithTheNextCommand) {
  const struct {
    const char* sql;
    bool isTextGone;  ///< from the note itself
  } ways[] = {
      {"DELETE FROM note WHERE id = 70", true},
      {"UPDATE note SET permanentlyDeleted = 1 WHERE id = 70", false},
      {"UPDATE note SET permanentlyDeleted = 1, text = NULL WHERE id = 70", true},
      {"UPDATE note SET encrypted = 1 WHERE id = 70", false},
      {"UPDATE note SET encrypted = 1, text = 'cipher' WHERE id = 70", true},
      {"UPDATE note SET text = 'cipher' WHERE id = 70; UPDATE note SET encrypted = 1", true},
      {"INSERT OR REPLACE INTO note (id, text) VALUES (70, 'another')", true},
  };
  for (const auto& way : ways) {
    SetUp();
    support::ForeignClient client(home.database());
    client.run("PRAGMA secure_delete = ON; DELETE FROM note");
    insertNumbered(1, 1200);
    client.run("UPDATE note SET text = 'see [[ᚠᚢᚦ]]', title = 'ᚠᚢᚦ' WHERE id = 70");
    while (update(1000)) {
    }
    ASSERT_EQ(notesWith("ᚠᚢᚦ"), std::vector<std::int64_t>{70});
    ASSERT_EQ(client.value("SELECT count(*) FROM noteLink"), "1");
    client.run(std::string(way.sql) + "; UPDATE note SET title = NULL WHERE id = 70");
    ASSERT_TRUE(isIndexed("ᚠᚢᚦ")) << "until the next command";
    reopen();
    EXPECT_FALSE(isIndexed("ᚠᚢᚦ")) << way.sql;
    while (update(1000)) {
    }
    EXPECT_FALSE(isIndexed("ᚠᚢᚦ")) << way.sql << ", when its note is indexed again";
    EXPECT_EQ(client.value("SELECT count(*) FROM noteLink"), "0") << way.sql;
    client.run("PRAGMA wal_checkpoint(TRUNCATE)");
    EXPECT_TRUE(!way.isTextGone || !isOnDisk("ᚠᚢᚦ")) << way.sql;
  }
}

TEST_F(Index, ForgetsTheFormerTextOfAChangedNoteWithinSixtyFourChangesASlice) {
  insertNumbered(1, 100);
  support::ForeignClient client(home.database());
  client.run("PRAGMA secure_delete = ON; UPDATE note SET text = 'ᚠᚢᚦ' WHERE id = 50");
  update(1000);
  client.run("UPDATE note SET text = 'changed' WHERE id = 50");
  const int slices = std::stoi(client.value("SELECT count(*) FROM searchSlice"));
  for (int i = 1; i <= slices; ++i) {
    insertNumbered(i * 100 + 1, i * 100 + 64);
    reopen();
  }
  client.run("PRAGMA wal_checkpoint(TRUNCATE)");
  EXPECT_FALSE(isOnDisk("ᚠᚢᚦ"));
}

}  // namespace
}  // namespace tavimodel

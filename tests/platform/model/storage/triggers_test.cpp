// Whatever another program writes with plain SQL, the triggers keep the derived tables consistent.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

#include "platform/model/objects/core_data_stack.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavimodel {
namespace {

class OtherProgram {
 public:
  OtherProgram(const std::filesystem::path& database, unsigned seed)
      : client_(database), random_(seed) {
    if (seed % 3 == 0) client_.run("PRAGMA recursive_triggers = ON");
  }

  /// Makes one of all the changes that SQL allows. A change that violates a constraint has no
  /// effect.
  std::string change() {
    const std::string sql = statement();
    try {
      client_.run(sql);
    } catch (const std::runtime_error&) {
    }
    return sql;
  }

  void run(const char* sql) { client_.run(sql); }
  std::string ask(const char* question) { return client_.value(question); }

 private:
  int below(int end) { return std::uniform_int_distribution(0, end - 1)(random_); }
  std::string id() { return fmt::to_string(below(8) + 1); }
  std::string name() { return fmt::format("'name {}'", below(8)); }
  std::string idColumn() {
    constexpr std::array names = {"id", "rowid", "OID", "_rowid_"};
    return names[static_cast<std::size_t>(below(names.size()))];
  }
  std::string flag() { return below(2) == 0 ? "0" : "1"; }

  std::string statement() {
    switch (below(10)) {
      case 0:
        return fmt::format("INSERT INTO note (title, text, trashed) VALUES ({}, 'é', {})", name(),
                           flag());
      case 1:
        return fmt::format("INSERT OR REPLACE INTO note (uniqueIdentifier, title) VALUES ({}, {})",
                           name(), name());
      case 2:
        return fmt::format("INSERT OR REPLACE INTO note (id, uniqueIdentifier) VALUES ({}, {})",
                           id(), name());
      case 3:
        return fmt::format(
            "UPDATE note SET trashed = {}, archived = {}, permanentlyDeleted = {}, "
            "pinned = {}, encrypted = {}, modificationDate = {} WHERE id = {}",
            flag(), flag(), below(2) == 0 ? "NULL" : flag(), flag(), flag(), id(), id());
      case 4:
        return fmt::format("UPDATE {} note SET {} = {} WHERE id = {}",
                           below(2) == 0 ? "OR REPLACE" : "", idColumn(), id(), id());
      case 5:
        return fmt::format("UPDATE {} note SET uniqueIdentifier = {} WHERE id = {}",
                           below(2) == 0 ? "OR REPLACE" : "", name(), id());
      case 6:
        return fmt::format("DELETE FROM note WHERE id = {}", id());
      case 7:
        return fmt::format(
            "INSERT OR IGNORE INTO noteTag SELECT id, {} FROM note WHERE id = {}; "
            "INSERT INTO file (note, filename) SELECT id, 'a' FROM note WHERE id = {}",
            id(), id(), id());
      case 8:
        return fmt::format(
            "INSERT INTO note (uniqueIdentifier, text) VALUES ({}, {}) ON CONFLICT "
            "(uniqueIdentifier) DO UPDATE SET title = {}, text = excluded.text",
            name(), name(), name());
      default:
        return fmt::format("UPDATE note SET text = {}, title = {} WHERE id = {}", name(), name(),
                           id());
    }
  }

  support::ForeignClient client_;
  std::mt19937 random_;
};

/// Does what our program does on closing: stores what SQL cannot compute. Stores the text itself as
/// its facts, so that outdated facts are detected.
constexpr const char* storeFacts =
    "UPDATE noteSummary SET searchRow = note, "
    "titleKey = (SELECT ifnull(title, '') FROM note WHERE id = noteSummary.note), "
    "textDigest = (SELECT ifnull(text, '') FROM note WHERE id = noteSummary.note)";

/// Empty if everything is consistent, otherwise a description of what is not.
std::string inconsistency(OtherProgram& other) {
  constexpr const char* columns =
      "uniqueIdentifier, title, creationDate, modificationDate, trashed, archived, "
      "permanentlyDeleted, pinned, encrypted, readOnly";
  const std::string notes = fmt::format("SELECT id, {} FROM note", columns);
  const std::string summaries = fmt::format("SELECT note, {} FROM noteSummary", columns);
  const auto any = [&](const std::string& rows) {
    return other.ask(fmt::format("SELECT count(*) FROM ({})", rows).c_str()) != "0";
  };
  if (any(notes + " EXCEPT " + summaries)) return "a note has no summary, or an old one";
  if (any(summaries + " EXCEPT " + notes)) return "a summary has no note";
  if (any("SELECT name FROM counter c WHERE name GLOB 'notes?' AND value <> (SELECT count(*) FROM "
          "note WHERE trashed * 4 + archived * 2 + ifnull(permanentlyDeleted, 0) = "
          "substr(c.name, 6) + 0)"))
    return "a count of notes is wrong";
  if (any("SELECT 1 FROM noteSummary s JOIN note ON note.id = s.note WHERE "
          "(titleKey IS NOT NULL AND titleKey <> ifnull(note.title, '')) OR "
          "(textDigest IS NOT NULL AND textDigest <> ifnull(note.text, ''))"))
    return "an old text's facts count as known";
  if (any("SELECT 1 FROM noteSummary WHERE (titleKey IS NULL AND textDigest IS NOT NULL) OR "
          "(textDigest IS NULL AND searchRow IS NOT NULL)"))
    return "facts that go together do not";
  if (any("SELECT note FROM noteTag WHERE note NOT IN (SELECT id FROM note) UNION ALL "
          "SELECT note FROM file WHERE note NOT IN (SELECT id FROM note)"))
    return "a tag or a file belongs to no note";
  return {};
}

TEST(Triggers, KeepDerivedTablesConsistent) {
  for (unsigned seed = 0; seed < 12; ++seed) {
    const support::ThrowawayHome home;
    std::string error;
    ASSERT_NE(KVCoreDataStackForExtensions::initStackOutputError(home.data(), error), nullptr)
        << error;
    OtherProgram other(home.database(), seed);
    other.ask("PRAGMA synchronous = OFF");
    for (int step = 0; step < 150; ++step) {
      if (step % 3 == 0) other.run(storeFacts);
      const std::string sql = other.change();
      ASSERT_EQ(inconsistency(other), "") << "seed " << seed << ", step " << step << ": " << sql;
    }
    EXPECT_NE(other.ask("SELECT count(*) FROM note"), "0");
  }
}

}  // namespace
}  // namespace tavimodel

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "platform/model/objects/note_tag.h"
#include "platform/model/objects/opened_model.h"
#include "platform/model/search/plain_evaluation.h"
#include "platform/model/search/search_generator.h"
#include "platform/model/search/search_index.h"
#include "platform/model/storage/bookkeeping.h"
#include "support/rounds.h"

// Searches by index, summary rows and scans must all find what the reference implementation finds,
// for random notes and queries, after random changes by this program and by another.

namespace tavimodel {
namespace {

std::string sqlText(const std::string& text) {
  char* quoted = sqlite3_mprintf("%Q", text.c_str());
  std::string result = quoted;
  sqlite3_free(quoted);
  return result;
}

class SearchEquivalence : public OpenedModel {
 protected:
  void SetUp() override {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    OpenedModel::SetUp();
    client = std::make_unique<support::ForeignClient>(home.database());
  }
  void TearDown() override {
    unsetenv("TZ");
    tzset();
  }

  std::string someID() {
    return client->value("SELECT id FROM note ORDER BY random() * 0 + (id * " +
                         std::to_string(1 + generate.below(997)) + ") % 1009 LIMIT 1");
  }

  void strangerInserts(const std::string& verb, const std::string& key, const std::string& value) {
    const auto flag = [&](std::size_t n) { return std::string(generate.oneIn(n) ? "1" : "0"); };
    client->run(verb + " INTO note (" + key +
                ", title, text, modificationDate, creationDate, trashed, archived, "
                "permanentlyDeleted, pinned, encrypted, readOnly) VALUES (" +
                value + ", " + (generate.oneIn(9) ? "NULL" : sqlText(generate.title())) + ", " +
                (generate.oneIn(20) ? "NULL" : sqlText(generate.text())) + ", " + generate.date() +
                ", " + generate.date() + ", " + flag(6) + ", " + flag(6) + ", " +
                (generate.oneIn(2) ? "NULL" : flag(5)) + ", " + flag(5) + ", " + flag(8) + ", " +
                flag(5) + ")");
  }

  void strangerTags(const std::string& id) {
    const std::string name = sqlText(generate.tag());
    client->run("INSERT OR IGNORE INTO tag (title) VALUES (" + name + ")");
    client->run("INSERT OR IGNORE INTO noteTag SELECT " + id +
                ", id FROM tag WHERE title = " + name);
  }

  void strangerAttaches(const std::string& id) {
    const char* names[] = {"'a.png'", "'b.pdf'", "NULL", "'c'"};
    client->run("INSERT INTO file (note, filename, ocrText) VALUES (" + id + ", " +
                names[generate.below(4)] + ", " +
                (generate.oneIn(2) ? "NULL" : sqlText(generate.word())) + ")");
  }

  void strangerChangesSomething() {
    const std::string id = someID();
    const std::string flags[] = {"pinned",   "trashed",   "archived",
                                 "readOnly", "encrypted", "permanentlyDeleted"};
    switch (generate.below(12)) {
      case 0:
        return strangerInserts("INSERT", "id", "NULL");
      case 1:
        return strangerInserts("INSERT OR REPLACE", "id", id);
      case 2:
        return strangerInserts("INSERT OR REPLACE", "uniqueIdentifier",
                               "(SELECT uniqueIdentifier FROM note WHERE id = " + id + ")");
      case 3:
        return client->run("DELETE FROM note WHERE id IN (" + id + ", " + someID() + ")");
      case 4:
        return client->run("UPDATE note SET text = " + sqlText(generate.text()) +
                           " WHERE id = " + id);
      case 5:
        return client->run("UPDATE note SET title = " + sqlText(generate.title()) +
                           " WHERE id = " + id);
      case 6:
        return client->run("UPDATE note SET modificationDate = " + generate.date() +
                           ", creationDate = " + generate.date() + " WHERE id = " + id);
      case 7:
        return strangerTags(id);
      case 8:
        return client->run("DELETE FROM noteTag WHERE note = " + id);
      case 9:
        return strangerAttaches(id);
      case 10:
        return client->run("DELETE FROM file WHERE note = " + id);
      default:
        const std::string& flag = flags[generate.below(6)];
        return client->run("UPDATE note SET " + flag + " = 1 - ifnull(" + flag +
                           ", 0) WHERE id = " + id);
    }
  }

  void weChangeSomething() {
    context().reset();
    if (generate.oneIn(4)) {
      KVNote::noteWithText(generate.text(), context());
      return context().save();
    }
    KVNote* note = KVNote::noteWithUniqueIdentifier(
        client->value("SELECT uniqueIdentifier FROM note WHERE id = " + someID()), context());
    if (note == nullptr || note->encryptedValue()) return;
    switch (generate.below(5)) {
      case 0:
        note->pinnedValue() ? note->unpin() : note->pin();
        break;
      case 1:
        note->trashedValue() ? note->restoreFromTrash() : note->trash();
        break;
      case 2:
        KVNoteTag::getOrCreateTagWithName(generate.tag(), context()).addTagToNotes({note}, true);
        break;
      default:
        note->updateNoteWithText(generate.text(), generate.oneIn(2));
    }
    context().save();
  }

  void changeSomething() {
    for (std::size_t n = generate.below(6); n > 0; --n) {
      generate.oneIn(3) ? weChangeSomething() : strangerChangesSomething();
    }
    if (generate.oneIn(12)) reopen();
    if (generate.oneIn(8)) {
      context().reset();
      catchUp(stack->connection(), updateSearchIndex,
              {.fewestNotes = 1, .milliseconds = 1000, .notesInSlice = 1024});
    }
  }

  static constexpr Place kPlaces[] = {Place::notes, Place::trash, Place::archive, Place::anywhere};
  static bool isAt(std::size_t location, const PlainNote& note) {
    if (note.deleted) return false;
    return location == 0   ? !note.trashed && !note.archived
           : location == 1 ? note.trashed
           : location == 2 ? note.archived
                           : true;
  }

  /// In list order: pinned notes first, then by modification date, newest first.
  static std::vector<std::int64_t> expected(const PlainNotes& notes, const SearchQuery& query,
                                            std::size_t location) {
    const Evaluation evaluation(query);
    std::vector<const PlainNote*> found;
    for (const auto& [id, note] : notes.all()) {
      if (isAt(location, note) && evaluation.finds(note)) found.push_back(&note);
    }
    std::sort(found.begin(), found.end(), [](const PlainNote* a, const PlainNote* b) {
      if (a->pinned != b->pinned) return a->pinned;
      if (a->modified != b->modified) return a->modified > b->modified;
      return a->id > b->id;
    });
    std::vector<std::int64_t> ids;
    for (const PlainNote* note : found) ids.push_back(note->id);
    return ids;
  }

  std::vector<std::int64_t> fetched(const FetchRequest& request) {
    const NoteTable table = context().fetch(request);
    std::vector<std::int64_t> ids;
    std::vector<std::string_view> tags;
    for (std::size_t i = 0; i < table.size(); ++i) ids.push_back(table.note(i, tags).id);
    return ids;
  }

  void check(const PlainNotes& notes, const std::string& text) {
    const std::size_t location = generate.below(4);
    SCOPED_TRACE(text + " at " + std::to_string(location));
    const auto query = std::make_shared<SearchQuery>(parseSearchQuery(text, SearchGenerator::now));
    FetchRequest request;
    request.place = kPlaces[location];
    request.search = query;
    request.sortDescriptors = {{SortKey::pinned, false}, {SortKey::modificationDate, false}};
    const std::vector<std::int64_t> wanted = expected(notes, *query, location);
    context().reset();
    EXPECT_EQ(fetched(request), wanted);
    EXPECT_EQ(context().count(request), static_cast<std::int64_t>(wanted.size()));

    const std::size_t offset = std::min(generate.below(6), wanted.size());
    const std::size_t limit = std::min(1 + generate.below(9), wanted.size() - offset);
    request.fetchOffset = static_cast<std::int64_t>(offset);
    request.fetchLimit = static_cast<std::int64_t>(limit);
    const auto begin = wanted.begin() + static_cast<std::ptrdiff_t>(offset);
    EXPECT_EQ(fetched(request), std::vector(begin, begin + static_cast<std::ptrdiff_t>(limit)));
  }

  SearchGenerator generate;
  std::unique_ptr<support::ForeignClient> client;
};

TEST_F(SearchEquivalence, HoldsForTheWholeLanguageAfterAnyChanges) {
  for (int i = 0; i < 300; ++i) {
    if (i % 3 == 0) {
      KVNote::noteWithText(generate.text(), context());
    } else {
      strangerInserts("INSERT", "id", "NULL");
    }
    if (i % 50 == 0) context().save();
  }
  context().save();
  const int count = support::rounds(60);
  for (int round = 0; round < count && !HasFailure(); ++round) {
    changeSomething();
    const PlainNotes notes(*client);
    for (int i = 0; i < 8 && !HasFailure(); ++i) check(notes, generate.query());
  }
}

}  // namespace
}  // namespace tavimodel

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <random>
#include <set>

#include "platform/markdown/ast.h"
#include "platform/model/bookkeeping.h"
#include "platform/model/core_data_stack.h"
#include "platform/model/note_tag.h"
#include "platform/model/search_query.h"
#include "platform/text/folding.h"
#include "platform/text/string_search.h"
#include "platform/text/utf8.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

// The indexes, the short rows and the walks are shortcuts to one answer. Here it is worked out the
// long way: every note is read with plain SQL, and the query's tree is evaluated over it in memory.

namespace tavimodel {
namespace {

using Kind = SearchCondition::Kind;

/// All there is to know of a note, as any program can read it.
struct PlainNote {
  std::int64_t id = 0;
  std::string identifier, title, text;
  std::optional<double> modified, created;
  bool trashed = false, archived = false, deleted = false, pinned = false;
  bool locked = false, readOnly = false, isLinked = false;
  std::set<std::string> tags;
  std::vector<std::pair<std::string, std::string>> files;  ///< names, and the texts recognised
  zephyrdown::ZDKTextSummary summary;                      ///< empty for a locked note
};

/// Steps through a plain SELECT.
class Rows {
 public:
  Rows(const support::ForeignClient& client, const char* sql) {
    sqlite3_prepare_v2(client.handle(), sql, -1, &statement_, nullptr);
  }
  ~Rows() { sqlite3_finalize(statement_); }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;

  bool next() { return sqlite3_step(statement_) == SQLITE_ROW; }
  std::int64_t integer(int column) const { return sqlite3_column_int64(statement_, column); }
  std::string text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string() : std::string(bytes, size);
  }
  std::optional<double> real(int column) const {
    if (sqlite3_column_type(statement_, column) == SQLITE_NULL) return std::nullopt;
    return sqlite3_column_double(statement_, column);
  }

 private:
  sqlite3_stmt* statement_ = nullptr;
};

class PlainNotes {
 public:
  explicit PlainNotes(const support::ForeignClient& client) {
    readNotes(client);
    for (Rows rows(client, "SELECT note, title FROM noteTag JOIN tag ON tag.id = tag");
         rows.next();)
      if (PlainNote* note = find(rows.integer(0))) note->tags.insert(rows.text(1));
    for (Rows rows(client, "SELECT note, filename, ocrText FROM file"); rows.next();)
      if (PlainNote* note = find(rows.integer(0)))
        note->files.emplace_back(rows.text(1), rows.text(2));
    for (const auto& [id, note] : notes_) followLinks(note);
  }

  const std::map<std::int64_t, PlainNote>& all() const { return notes_; }

 private:
  void readNotes(const support::ForeignClient& client) {
    Rows rows(client,
              "SELECT id, uniqueIdentifier, title, text, modificationDate, creationDate, trashed, "
              "archived, permanentlyDeleted, pinned, encrypted, readOnly FROM note");
    while (rows.next()) {
      PlainNote note{rows.integer(0), rows.text(1), rows.text(2),
                     rows.text(3),    rows.real(4), rows.real(5)};
      note.trashed = rows.integer(6) != 0;
      note.archived = rows.integer(7) != 0;
      note.deleted = rows.integer(8) != 0;
      note.pinned = rows.integer(9) != 0;
      note.locked = rows.integer(10) != 0;
      note.readOnly = rows.integer(11) != 0;
      if (!note.locked) note.summary = zephyrdown::ZDKAST::fromMarkdown(note.text).textSummary();
      notes_.emplace(note.id, std::move(note));
    }
  }

  PlainNote* find(std::int64_t id) {
    const auto found = notes_.find(id);
    return found == notes_.end() ? nullptr : &found->second;
  }

  /// "[[Title/Heading]]": the longest title there is.
  void followLinks(const PlainNote& from) {
    if (from.deleted) return;
    for (std::string target : from.summary.wikiLinks) {
      while (!markLinked(from, target) && target.find('/') != std::string::npos) {
        target.resize(target.rfind('/'));
      }
    }
  }

  bool markLinked(const PlainNote& from, const std::string& title) {
    bool exists = false;
    for (auto& [id, note] : notes_) {
      if (platform::text::foldedForSearch(note.title) != platform::text::foldedForSearch(title))
        continue;
      exists = true;
      if (id != from.id) note.isLinked = true;
    }
    return exists;
  }

  std::map<std::int64_t, PlainNote> notes_;
};

/// A query's tree, over one note at a time.
class Evaluation {
 public:
  explicit Evaluation(const SearchQuery& query) : query_(query) {
    for (const auto& group : query.groups) {
      for (const SearchCondition& condition : group) {
        terms_.try_emplace(condition.text, condition.text, platform::text::CaseFolding::full);
      }
    }
  }

  bool finds(const PlainNote& note) const {
    return std::all_of(query_.groups.begin(), query_.groups.end(), [&](const auto& group) {
      return std::any_of(group.begin(), group.end(), [&](const SearchCondition& condition) {
        return holds(condition, note) != condition.negated;
      });
    });
  }

 private:
  bool holdsTerm(const platform::text::StringSearch& term, const PlainNote& note) const {
    if (query_.ocrOnly) {
      return !query_.titlesOnly && !note.locked &&
             std::any_of(note.files.begin(), note.files.end(),
                         [&](const auto& file) { return term.isIn(file.second); });
    }
    if (term.isIn(note.title)) return true;
    return !query_.titlesOnly && !note.locked && term.isIn(note.text);
  }

  static bool holdsTag(const SearchCondition& condition, const std::string& tag) {
    const std::string& name = condition.text;
    if (condition.kind == Kind::exactTag) return tag == name;
    if (condition.kind == Kind::tag) return tag == name || tag.starts_with(name + "/");
    return tag != name && ("/" + tag + "/").find("/" + name + "/") != std::string::npos;
  }

  static bool isWithin(const SearchCondition& condition, const std::optional<double>& date) {
    return date && (!condition.from || *date >= *condition.from) &&
           (!condition.to || *date < *condition.to);
  }

  bool holds(const SearchCondition& condition, const PlainNote& note) const {
    const auto& summary = note.summary;
    const auto hasFile = [&](auto test) {
      return !note.locked && std::any_of(note.files.begin(), note.files.end(), test);
    };
    switch (condition.kind) {
      case Kind::term:
        return holdsTerm(terms_.at(condition.text), note);
      case Kind::tag:
      case Kind::exactTag:
      case Kind::subtag:
        return std::any_of(note.tags.begin(), note.tags.end(),
                           [&](const auto& tag) { return holdsTag(condition, tag); });
      case Kind::modified:
        return isWithin(condition, note.modified);
      case Kind::created:
        return isWithin(condition, note.created);
      case Kind::todo:
        return summary.todoIncomplete > 0;
      case Kind::done:
        return summary.todoIncomplete == 0 && summary.todoCompleted > 0;
      case Kind::task:
        return summary.todoIncomplete + summary.todoCompleted > 0;
      case Kind::tagged:
        return !note.tags.empty();
      case Kind::untagged:
        return note.tags.empty();
      case Kind::pinned:
        return note.pinned;
      case Kind::images:
        return summary.hasImages;
      case Kind::files:
        return hasFile([](const auto& file) { return !file.first.ends_with(".png"); });
      case Kind::attachments:
        return hasFile([](const auto&) { return true; });
      case Kind::code:
        return summary.hasCode;
      case Kind::locked:
        return note.locked;
      case Kind::readOnly:
        return note.readOnly;
      case Kind::empty:
        return !note.locked && platform::text::trimmingWhitespaceAndNewlines(note.text).empty();
      case Kind::untitled:
        return note.title.empty();
      case Kind::wikiLinks:
        return !summary.wikiLinks.empty();
      case Kind::backlinks:
        return note.isLinked;
      case Kind::ocr:
        return hasFile([](const auto& file) { return !file.second.empty(); });
    }
    return false;
  }

  const SearchQuery& query_;
  std::map<std::string, platform::text::StringSearch> terms_;
};

std::string sqlText(const std::string& text) {
  char* quoted = sqlite3_mprintf("%Q", text.c_str());
  std::string result = quoted;
  sqlite3_free(quoted);
  return result;
}

/// Makes up notes, changes and queries.
class Inventor {
 public:
  std::size_t below(std::size_t limit) { return random_() % limit; }
  bool oneIn(std::size_t n) { return below(n) == 0; }

  template <std::size_t N>
  std::string oneOf(const char* const (&choices)[N]) {
    return choices[below(N)];
  }

  std::string word() {
    static constexpr const char* kWords[] = {
        "a",      "b",       "ab",     "abc",   "Abcd", "ÉTÉ",    "été", "e\u0301t\u00E9",
        "straße", "STRASSE", "日本語", "本",    "\"",   "\\",     "ﬁn",  "fin",
        "x-y",    "ΑΒΓς",    "αβγσ",   "İx",    "ı",    "e",      "é",   "%_",
        "'",      "or",      "#draft", "@todo", "🎉",    "invoice"};
    return oneOf(kWords);
  }

  std::string title() {
    static constexpr const char* kTitles[] = {"Plan",        "plan", "AC/DC", "Ärger",
                                              "A\u0308rger", "",     "été",   "Plan/B"};
    return oneOf(kTitles);
  }

  std::string tag() {
    static constexpr const char* kTags[] = {"work",      "work/draft", "draft",
                                            "two words", "Work",       "workshop",
                                            "日本/本",   "a/draft/x",  "é"};
    return oneOf(kTags);
  }

  std::string text() {
    if (oneIn(12)) return oneIn(2) ? "" : " \n\t\n";
    std::string result = oneIn(5) ? "" : "# " + title() + "\n";
    for (std::size_t n = below(8); n > 0; --n) result += (oneIn(4) ? "" : " ") + piece();
    return result;
  }

  std::string date() {
    if (oneIn(10)) return "NULL";
    return std::to_string(now - 86400.0 * 6 + static_cast<double>(below(86400 * 10)));
  }

  std::string query() {
    std::string result;
    for (std::size_t n = 1 + below(3); n > 0; --n) {
      if (oneIn(10)) result += oneIn(3) ? "-@title " : "@TITLE ";
      for (std::size_t m = oneIn(3) ? 2 + below(2) : 1; m > 0; --m) {
        result += (oneIn(3) ? "-" : "") + condition() + (m > 1 ? " or " : "  ");
      }
    }
    return result;
  }

  static constexpr double now = 1'711'886'400;  // in Berlin, the day that has 23 hours

 private:
  std::string piece() {
    static constexpr const char* kPieces[] = {
        "\n- [ ] open", "\n- [x] closed\n", "![](a.png)",      "`code`",     "[[Plan]]",
        "[[Plan/B]]",   "[[AC\\/DC]]",      "[[ärger|alias]]", "[f](f.pdf)", "\n\n"};
    if (oneIn(6)) return " #" + tag() + "# ";
    return oneIn(3) ? oneOf(kPieces) : word();
  }

  std::string condition() {
    static constexpr const char* kDirectives[] = {
        "@todo",      "@done",     "@task",  "@tagged",    "@untagged",  "@pinned",     "@images",
        "@files",     "@code",     "@ocr",   "@empty",     "@wikilinks", "@locked",     "@readonly",
        "@backlinks", "@untitled", "@Today", "@yesterday", "@ctoday",    "@attachments"};
    static constexpr const char* kMarks[] = {"#", "!#", "#*/"};
    if (oneIn(2)) return term();
    if (oneIn(3)) return oneOf(kMarks) + tag() + "#";
    return oneIn(4) ? datesCondition() : oneOf(kDirectives);
  }

  std::string term() {
    std::string text = word();
    for (std::size_t n = oneIn(3) ? below(3) : 0; n > 0; --n)
      text += (oneIn(2) ? " " : "") + word();
    std::string escaped;
    for (const char c : text)
      escaped += (c == '"' || c == '\\') ? std::string{'\\', c} : std::string{c};
    const bool isPlain = text.find_first_of(" \"\\#@") == std::string::npos && text != "or";
    return isPlain && oneIn(2) ? text : "\"" + escaped + "\"";
  }

  std::string datesCondition() {
    static constexpr const char* kNames[] = {"@date", "@cdate"};
    static constexpr const char* kRelations[] = {"", "<", ">"};
    if (oneIn(3)) return (oneIn(2) ? "@last" : "@created") + std::to_string(1 + below(5)) + "days";
    const std::string day = std::to_string(25 + below(8) % 7);
    return oneOf(kNames) + "(" + oneOf(kRelations) + "2024-03-" + day + ")";
  }

  std::mt19937 random_{20240331};
};

class SearchEquivalence : public testing::Test {
 protected:
  void SetUp() override {
    setenv("TZ", "Europe/Berlin", 1);
    tzset();
    reopen();
    client = std::make_unique<support::ForeignClient>(home.database());
  }
  void TearDown() override {
    unsetenv("TZ");
    tzset();
  }

  void reopen() {
    std::string error;
    stack.reset();
    stack = KVCoreDataStackForExtensions::initStackOutputError(error);
    ASSERT_NE(stack, nullptr) << error;
  }

  ManagedObjectContext& context() { return *stack->managedObjectContext(); }

  std::string someID() {
    return client->value("SELECT id FROM note ORDER BY random() * 0 + (id * " +
                         std::to_string(1 + invent.below(997)) + ") % 1009 LIMIT 1");
  }

  void strangerInserts(const std::string& verb, const std::string& key, const std::string& value) {
    const auto flag = [&](std::size_t n) { return std::string(invent.oneIn(n) ? "1" : "0"); };
    client->run(verb + " INTO note (" + key +
                ", title, text, modificationDate, creationDate, trashed, archived, "
                "permanentlyDeleted, pinned, encrypted, readOnly) VALUES (" +
                value + ", " + (invent.oneIn(9) ? "NULL" : sqlText(invent.title())) + ", " +
                (invent.oneIn(20) ? "NULL" : sqlText(invent.text())) + ", " + invent.date() + ", " +
                invent.date() + ", " + flag(6) + ", " + flag(6) + ", " +
                (invent.oneIn(2) ? "NULL" : flag(5)) + ", " + flag(5) + ", " + flag(8) + ", " +
                flag(5) + ")");
  }

  void strangerTags(const std::string& id) {
    const std::string name = sqlText(invent.tag());
    client->run("INSERT OR IGNORE INTO tag (title) VALUES (" + name + ")");
    client->run("INSERT OR IGNORE INTO noteTag SELECT " + id +
                ", id FROM tag WHERE title = " + name);
  }

  void strangerAttaches(const std::string& id) {
    const char* names[] = {"'a.png'", "'b.pdf'", "NULL", "'c'"};
    client->run("INSERT INTO file (note, filename, ocrText) VALUES (" + id + ", " +
                names[invent.below(4)] + ", " +
                (invent.oneIn(2) ? "NULL" : sqlText(invent.word())) + ")");
  }

  void strangerChangesSomething() {
    const std::string id = someID();
    const std::string flags[] = {"pinned",   "trashed",   "archived",
                                 "readOnly", "encrypted", "permanentlyDeleted"};
    switch (invent.below(12)) {
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
        return client->run("UPDATE note SET text = " + sqlText(invent.text()) +
                           " WHERE id = " + id);
      case 5:
        return client->run("UPDATE note SET title = " + sqlText(invent.title()) +
                           " WHERE id = " + id);
      case 6:
        return client->run("UPDATE note SET modificationDate = " + invent.date() +
                           ", creationDate = " + invent.date() + " WHERE id = " + id);
      case 7:
        return strangerTags(id);
      case 8:
        return client->run("DELETE FROM noteTag WHERE note = " + id);
      case 9:
        return strangerAttaches(id);
      case 10:
        return client->run("DELETE FROM file WHERE note = " + id);
      default:
        const std::string& flag = flags[invent.below(6)];
        return client->run("UPDATE note SET " + flag + " = 1 - ifnull(" + flag +
                           ", 0) WHERE id = " + id);
    }
  }

  void weChangeSomething() {
    context().reset();
    if (invent.oneIn(4)) {
      KVNote::noteWithText(invent.text(), context());
      return context().save();
    }
    KVNote* note = KVNote::noteWithUniqueIdentifier(
        client->value("SELECT uniqueIdentifier FROM note WHERE id = " + someID()), context());
    if (note == nullptr || note->encryptedValue()) return;
    switch (invent.below(5)) {
      case 0:
        note->pinnedValue() ? note->unpin() : note->pin();
        break;
      case 1:
        note->trashedValue() ? note->restoreFromTrash() : note->trash();
        break;
      case 2:
        KVNoteTag::getOrCreateTagWithName(invent.tag(), context()).addTagToNotes({note}, true);
        break;
      default:
        note->updateNoteWithText(invent.text(), invent.oneIn(2));
    }
    context().save();
  }

  void changeSomething() {
    for (std::size_t n = invent.below(6); n > 0; --n) {
      invent.oneIn(3) ? weChangeSomething() : strangerChangesSomething();
    }
    if (invent.oneIn(12)) reopen();
    if (invent.oneIn(8)) {
      context().reset();
      catchUp(stack->connection(), {.notesNotIndexed = 1000});
    }
  }

  static constexpr const char* kLocations[] = {"trashed == NO AND archived == NO", "trashed == YES",
                                               "archived == YES"};
  static bool isAt(std::size_t location, const PlainNote& note) {
    if (note.deleted) return false;
    return location == 0   ? !note.trashed && !note.archived
           : location == 1 ? note.trashed
           : location == 2 ? note.archived
                           : true;
  }

  /// In the order of a list: pinned ones first, the last changed first.
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
    for (std::size_t i = 0; i < table.size(); ++i) ids.push_back(table[i].id);
    return ids;
  }

  void check(const PlainNotes& notes, const std::string& text) {
    const std::size_t location = invent.below(5);
    SCOPED_TRACE(text + " at " + std::to_string(location));
    const auto query = std::make_shared<SearchQuery>(parseSearchQuery(text, Inventor::now));
    std::vector<Predicate> parts{
        Predicate::withFormat("permanentlyDeleted == NO OR permanentlyDeleted == nil"),
        Predicate::matching(query)};
    if (location < 3) parts.insert(parts.begin(), Predicate::withFormat(kLocations[location]));
    FetchRequest request;
    request.predicate = Predicate::andPredicate(parts);
    request.sortDescriptors = {{SortKey::pinned, false}, {SortKey::modificationDate, false}};
    const std::vector<std::int64_t> wanted = expected(notes, *query, location);
    context().reset();
    EXPECT_EQ(fetched(request), wanted);
    EXPECT_EQ(context().count(request), static_cast<std::int64_t>(wanted.size()));

    const std::size_t offset = std::min(invent.below(6), wanted.size());
    const std::size_t limit = std::min(1 + invent.below(9), wanted.size() - offset);
    request.fetchOffset = static_cast<std::int64_t>(offset);
    request.fetchLimit = static_cast<std::int64_t>(limit);
    const auto begin = wanted.begin() + static_cast<std::ptrdiff_t>(offset);
    EXPECT_EQ(fetched(request), std::vector(begin, begin + static_cast<std::ptrdiff_t>(limit)));
  }

  support::ThrowawayHome home;
  Inventor invent;
  std::unique_ptr<KVCoreDataStackForExtensions> stack;
  std::unique_ptr<support::ForeignClient> client;
};

TEST_F(SearchEquivalence, HoldsForTheWholeLanguageAfterAnyChanges) {
  for (int i = 0; i < 300; ++i) {
    if (i % 3 == 0) {
      KVNote::noteWithText(invent.text(), context());
    } else {
      strangerInserts("INSERT", "id", "NULL");
    }
    if (i % 50 == 0) context().save();
  }
  context().save();
  const char* rounds = std::getenv("TAVI_RANDOM_ROUNDS");
  const int count = rounds != nullptr ? std::atoi(rounds) : 60;
  for (int round = 0; round < count && !HasFailure(); ++round) {
    changeSomething();
    const PlainNotes notes(*client);
    for (int i = 0; i < 8 && !HasFailure(); ++i) check(notes, invent.query());
  }
}

}  // namespace
}  // namespace tavimodel

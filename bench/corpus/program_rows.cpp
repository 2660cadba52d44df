#include "common/database.h"
#include "writers.h"

namespace corpus {

using bench::Statement;

void writeRows(const Notes& notes, std::size_t hugeNoteBytes, const std::string& path) {
  bench::Database database(path.c_str());
  database.execute("BEGIN IMMEDIATE");
  Statement tag(database, "INSERT INTO tag (id, title) VALUES (?1, ?2)");
  const auto tagRow = [](std::size_t place) { return static_cast<std::int64_t>(place) + 1; };
  for (std::size_t place = 0; place < notes.tags().names().size(); ++place) {
    tag.bind(1, tagRow(place)).bind(2, std::string_view(notes.tags().names()[place])).run();
  }

  Statement insert(database,
                   "INSERT INTO note (uniqueIdentifier, title, text, creationDate, "
                   "modificationDate, trashed, archived, pinned) "
                   "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)");
  Statement noteTag(database, "INSERT INTO noteTag (note, tag) VALUES (?1, ?2)");
  Statement pinned(database, "INSERT INTO pinnedInTag (note, tag) VALUES (?1, ?2)");
  forEachNote(notes, hugeNoteBytes, [&](const Note& note) {
    insert.bind(1, std::string_view(note.uniqueIdentifier)).bind(2, std::string_view(note.title));
    insert.bind(3, std::string_view(note.text)).bind(4, note.created).bind(5, note.modified);
    insert.bind(6, std::int64_t{note.location == Location::trash});
    insert.bind(7, std::int64_t{note.location == Location::archive});
    insert.bind(8, std::int64_t{note.pinned}).run();
    const std::int64_t row = sqlite3_last_insert_rowid(database.handle());
    for (const std::size_t place : note.tags) noteTag.bind(1, row).bind(2, tagRow(place)).run();
    if (note.pinned && !note.tags.empty()) {
      pinned.bind(1, row).bind(2, tagRow(note.tags.front())).run();
    }
  });
  database.execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
}

}  // namespace corpus

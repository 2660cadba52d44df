// commit FILE [NOTES [indexed]]: adds small notes, each with a durable commit of its own; the
// number of the file's notes is printed. The log is written back, so that the file alone holds
// everything. "indexed" keeps the trigram index in the same commit.
#include <ctime>

#include "found_notes.h"

int main(int argc, char** argv) {
  bench::Database database(argv[1]);
  database.execute("PRAGMA synchronous = FULL");
  const bool indexed = argc > 3;
  bench::Statement begin(database, "BEGIN IMMEDIATE");
  bench::Statement note(database,
                        "INSERT INTO note (location, pinned, modified, created, identifier, title, "
                        "tags) VALUES (0, 0, ?1, ?1, hex(randomblob(16)), ?2, '#work')");
  bench::Statement body(database, "INSERT INTO body VALUES (last_insert_rowid(), ?1)");
  bench::Statement tag(database, "INSERT INTO noteTag VALUES ('work', ?1)");
  bench::Statement trigrams(database, "INSERT INTO trigrams (rowid, text) VALUES (?1, ?2)");
  bench::Statement commit(database, "COMMIT");
  const long notes = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 1;
  for (long i = 0; i < notes; ++i) {
    const std::string text =
        "# A small note\n\n#work\n\nIts text, number " + std::to_string(i) + ".";
    begin.run();
    note.bind(1, static_cast<double>(std::time(nullptr))).bind(2, std::string_view("A small note"));
    note.run();
    body.bind(1, std::string_view(text)).run();
    const std::int64_t id = sqlite3_last_insert_rowid(database.handle());
    tag.bind(1, id).run();
    if (indexed) trigrams.bind(1, id).bind(2, std::string_view(text)).run();
    commit.run();
  }
  database.execute("PRAGMA wal_checkpoint(TRUNCATE)");
  bench::Statement count(database, "SELECT max(id) FROM note");
  count.step();
  floors::Output() << count.integer(0) << "\n";
}

// commit FILE [NOTES [indexed]]: adds small notes, each with a durable commit of its own; the
// number of the file's notes is printed. The log is written back, so that the file alone holds
// everything. "indexed" keeps the trigram index in the same commit.
#include "output.h"
#include "small_notes.h"

int main(int argc, char** argv) {
  bench::Database database(argv[1]);
  using Index = floors::SmallNotes::Index;
  {
    floors::SmallNotes small(database, argc > 3 ? Index::trigrams : Index::none);
    const long notes = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 1;
    for (long i = 0; i < notes; ++i) small.add(std::to_string(i));
  }
  database.execute("PRAGMA wal_checkpoint(TRUNCATE)");
  bench::Statement count(database, "SELECT max(id) FROM note");
  count.step();
  floors::Output() << count.integer(0) << "\n";
}

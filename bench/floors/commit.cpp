// commit FILE: adds a small note with a durable commit.
// commit FILE small|copies NOTES [indexed]: adds as many, with a commit each: small ones, or the
// file's first notes once more. "indexed" keeps the trigram index in the same commit.
// The log is written back, so that the file alone holds everything, and the file's number of notes
// is printed.
#include <vector>

#include "new_notes.h"
#include "output.h"

namespace {

struct Note {
  std::string title, text;
};

std::vector<Note> firstNotes(bench::Database& database, long count) {
  bench::Statement notes(database,
                         "SELECT title, text FROM note JOIN body USING (id) ORDER BY id LIMIT ?1");
  notes.bind(1, std::int64_t{count});
  std::vector<Note> first;
  while (notes.step()) first.push_back({std::string(notes.text(0)), std::string(notes.text(1))});
  return first;
}

}  // namespace

int main(int argc, char** argv) {
  const bool copies = argc > 3 && std::string_view(argv[2]) == "copies";
  const long count = argc > 3 ? std::strtol(argv[3], nullptr, 10) : 1;
  bench::Database database(argv[1]);
  using Index = floors::NewNotes::Index;
  {
    floors::NewNotes notes(database, argc > 4 ? Index::trigrams : Index::none);
    if (copies) {
      for (const Note& note : firstNotes(database, count)) notes.add(note.title, note.text);
    } else {
      for (long i = 0; i < count; ++i) notes.addSmall(std::to_string(i));
    }
  }
  database.execute("PRAGMA wal_checkpoint(TRUNCATE)");
  bench::Statement number(database, "SELECT max(id) FROM note");
  number.step();
  floors::Output() << number.integer(0) << "\n";
}

// short_word FILE WORD: prints the notes that contain the word and how often, reading all texts.
#include "found_notes.h"
#include "word_search.h"

int main(int, char** argv) {
  const std::string_view word = argv[2];
  bench::Database database(argv[1]);
  bench::Statement bodies(database, "SELECT id, text FROM body");
  bench::Statement note(database,
                        "SELECT pinned, modified, identifier, title, tags, location FROM note "
                        "WHERE id = ?1");
  floors::FoundNotes found;
  while (bodies.step()) {
    const std::size_t matches = floors::countWord(bodies.text(1), word);
    if (matches == 0) continue;
    note.bind(1, bodies.integer(0)).step();
    if (note.integer(5) == 0) found.add(note, matches);
    note.reset();
  }
  floors::Output output;
  found.print(output);
}

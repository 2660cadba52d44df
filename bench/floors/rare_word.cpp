// rare_word FILE WORD: prints the notes that contain the word and how often, found by trigrams.
#include "found_notes.h"
#include "word_search.h"

int main(int, char** argv) {
  const std::string_view word = argv[2];
  const std::string trigrams = floors::trigramQuery(word);
  bench::Database database(argv[1]);
  bench::Statement candidates(database, "SELECT rowid FROM trigrams WHERE trigrams MATCH ?1");
  bench::Statement body(database, "SELECT text FROM body WHERE id = ?1");
  bench::Statement note(database,
                        "SELECT pinned, modified, identifier, title, tags, location FROM note "
                        "WHERE id = ?1");
  floors::FoundNotes found;
  candidates.bind(1, std::string_view(trigrams));
  while (candidates.step()) {
    body.bind(1, candidates.integer(0)).step();
    const std::size_t matches = floors::countWord(body.text(0), word);
    body.reset();
    if (matches == 0) continue;
    note.bind(1, candidates.integer(0)).step();
    if (note.integer(5) == 0) found.add(note, matches);
    note.reset();
  }
  floors::Output output;
  found.print(output);
}

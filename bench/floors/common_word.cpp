// common_word FILE WORD: prints the first 20 notes that contain the word, reading the list in
// order.
#include "found_notes.h"
#include "word_search.h"

int main(int, char** argv) {
  const std::string_view word = argv[2];
  bench::Database database(argv[1]);
  bench::Statement notes(database,
                         "SELECT identifier, title, tags, text FROM note JOIN body USING (id) "
                         "WHERE location = 0 ORDER BY pinned DESC, modified DESC");
  floors::Output output;
  for (int left = 20; left > 0 && notes.step();) {
    const std::size_t matches = floors::countWord(notes.text(3), word);
    if (matches == 0) continue;
    output << notes.text(0) << "\t" << notes.text(1) << "\t" << notes.text(2) << "\t"
           << static_cast<std::int64_t>(matches) << "\n";
    --left;
  }
}

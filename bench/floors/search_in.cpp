// search_in FILE IDENTIFIER WORD: prints the offsets of the word in the text of one note.
#include "found_notes.h"
#include "word_search.h"

int main(int, char** argv) {
  const std::string_view word = argv[3];
  bench::Database database(argv[1]);
  bench::Statement note(database,
                        "SELECT text FROM note JOIN body USING (id) WHERE identifier = ?1");
  note.bind(1, std::string_view(argv[2])).step();
  const std::string_view text = note.text(0);
  floors::Output output;
  for (std::size_t at = floors::findWord(text, word); at < text.size();
       at = floors::findWord(text, word, at + word.size())) {
    output << static_cast<std::int64_t>(at) << "\n";
  }
}

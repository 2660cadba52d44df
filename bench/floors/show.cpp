// show FILE IDENTIFIER: prints the line of one note.
#include "found_notes.h"

int main(int, char** argv) {
  bench::Database database(argv[1]);
  bench::Statement note(database, "SELECT identifier, title, tags FROM note WHERE identifier = ?1");
  note.bind(1, std::string_view(argv[2]));
  floors::Output output;
  if (note.step()) output << note.text(0) << "\t" << note.text(1) << "\t" << note.text(2) << "\n";
}

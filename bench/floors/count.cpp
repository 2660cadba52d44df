// count FILE: prints the number of notes in the list, counted in the index.
#include "found_notes.h"

int main(int, char** argv) {
  bench::Database database(argv[1]);
  bench::Statement count(database, "SELECT count(*) FROM note WHERE location = 0");
  count.step();
  floors::Output() << count.integer(0) << "\n";
}

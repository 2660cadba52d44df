// list_page FILE: prints the first 20 lines of the list.
#include "found_notes.h"

int main(int, char** argv) {
  bench::Database database(argv[1]);
  bench::Statement notes(database,
                         "SELECT identifier, title, tags FROM note WHERE location = 0 "
                         "ORDER BY pinned DESC, modified DESC LIMIT 20");
  floors::Output output;
  while (notes.step()) {
    output << notes.text(0) << "\t" << notes.text(1) << "\t" << notes.text(2) << "\n";
  }
}

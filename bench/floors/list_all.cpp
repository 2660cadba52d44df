// list_all FILE: prints all lines of the list, read in the order of the file and sorted in memory.
#include "found_notes.h"

int main(int, char** argv) {
  bench::Database database(argv[1]);
  bench::Statement notes(database,
                         "SELECT pinned, modified, identifier, title, tags "
                         "FROM note NOT INDEXED WHERE location = 0");
  floors::FoundNotes found;
  while (notes.step()) found.add(notes);
  floors::Output output;
  found.print(output);
}

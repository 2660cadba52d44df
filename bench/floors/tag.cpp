// tag FILE NAME: prints the notes with the tag or a descendant.
#include "found_notes.h"

int main(int, char** argv) {
  bench::Database database(argv[1]);
  bench::Statement notes(
      database,
      "SELECT pinned, modified, identifier, title, tags FROM note WHERE location = 0 AND id IN ("
      "SELECT note FROM noteTag WHERE tag = ?1 OR (tag > ?1 || '/' AND tag < ?1 || '0'))");
  notes.bind(1, std::string_view(argv[2]));
  floors::FoundNotes found;
  while (notes.step()) found.add(notes);
  floors::Output output;
  found.print(output);
}

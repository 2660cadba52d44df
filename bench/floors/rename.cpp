// rename FILE OLD NEW: renames a tag in the texts of all its notes in one durable commit, and
// prints the number of notes.
#include <string>
#include <vector>

#include "found_notes.h"

namespace {

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = 0; (at = text.find(from, at)) != text.npos; at += to.size()) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

int main(int, char** argv) {
  bench::Database database(argv[1]);
  database.execute("PRAGMA synchronous = FULL; BEGIN IMMEDIATE");
  const std::string oldTag = std::string("#") + argv[2];
  const std::string newTag = std::string("#") + argv[3];
  bench::Statement tagged(database, "SELECT note FROM noteTag WHERE tag = ?1");
  tagged.bind(1, std::string_view(argv[2]));
  std::vector<std::int64_t> notes;
  while (tagged.step()) notes.push_back(tagged.integer(0));
  tagged.reset();
  bench::Statement read(
      database, "SELECT text, tags FROM body JOIN note ON note.id = body.id WHERE body.id = ?1");
  bench::Statement body(database, "UPDATE body SET text = ?2 WHERE id = ?1");
  bench::Statement note(database, "UPDATE note SET tags = ?2 WHERE id = ?1");
  for (const std::int64_t id : notes) {
    read.bind(1, id).step();
    std::string text(read.text(0));
    std::string tags(read.text(1));
    read.reset();
    replaceAll(text, oldTag, newTag);
    replaceAll(tags, oldTag, newTag);
    body.bind(1, id).bind(2, std::string_view(text)).run();
    note.bind(1, id).bind(2, std::string_view(tags)).run();
  }
  bench::Statement relation(database, "UPDATE noteTag SET tag = ?2 WHERE tag = ?1");
  relation.bind(1, std::string_view(argv[2])).bind(2, std::string_view(argv[3])).run();
  database.execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
  floors::Output() << static_cast<std::int64_t>(notes.size()) << "\n";
}

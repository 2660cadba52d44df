#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include "common/database.h"

namespace floors {

/// Adds notes, each with a durable commit of its own.
class NewNotes {
 public:
  enum class Index { none, trigrams };

  /// With `trigrams` the index of the texts is kept in the same commit.
  NewNotes(bench::Database& database, Index index)
      : indexed_(index == Index::trigrams),
        begin_(database, "BEGIN IMMEDIATE"),
        note_(database,
              "INSERT INTO note (location, pinned, modified, created, identifier, title, tags) "
              "VALUES (0, 0, ?1, ?1, hex(randomblob(16)), ?2, '#work')"),
        body_(database, "INSERT INTO body VALUES (?1, ?2)"),
        tag_(database, "INSERT INTO noteTag VALUES ('work', ?1)"),
        trigrams_(database, "INSERT INTO trigrams (rowid, text) VALUES (?1, ?2)"),
        commit_(database, "COMMIT"),
        handle_(database.handle()) {
    database.execute("PRAGMA synchronous = FULL");
  }

  void add(std::string_view title, std::string_view text) {
    begin_.run();
    note_.bind(1, static_cast<double>(std::time(nullptr)));
    note_.bind(2, title).run();
    const std::int64_t id = sqlite3_last_insert_rowid(handle_);
    body_.bind(1, id).bind(2, text).run();
    tag_.bind(1, id).run();
    if (indexed_) trigrams_.bind(1, id).bind(2, text).run();
    commit_.run();
  }

  void addSmall(std::string_view number) {
    const std::string text =
        "# A small note\n\n#work\n\nIts text, number " + std::string(number) + ".";
    add("A small note", text);
  }

 private:
  bool indexed_;
  bench::Statement begin_, note_, body_, tag_, trigrams_, commit_;
  sqlite3* handle_;
};

}  // namespace floors

// server FILE: a bare JSON-RPC loop on the standard streams, for the requests that the benchmark
// sends. It keeps its connection, and asks nobody whether the file is still the same.
#include <cstdio>
#include <string>

#include "common/database.h"
#include "new_notes.h"
#include "output.h"
#include "word_search.h"

namespace {

using bench::Statement;
using floors::Output;

/// What lies between the first `before` and the double quote behind it.
std::string_view valueBehind(std::string_view line, std::string_view before) {
  const std::size_t found = line.find(before);
  if (found == line.npos) return {};
  const std::size_t begin = found + before.size();
  return line.substr(begin, line.find('"', begin) - begin);
}

enum class Inside { string, stringOfString };

/// JSON's escapes, once for the answer itself, twice for the answer as a text.
struct Escapes {
  std::string_view of[256];
  bool special[256] = {};
  constexpr Escapes(std::string_view quote, std::string_view backslash, std::string_view slash,
                    std::string_view newline) {
    set('"', quote);
    set('\\', backslash);
    set('/', slash);
    set('\n', newline);
  }
  constexpr void set(unsigned char c, std::string_view escape) {
    of[c] = escape;
    special[c] = true;
  }
};
constexpr Escapes once(R"(\")", R"(\\)", R"(\/)", R"(\n)");
constexpr Escapes twice(R"(\\\")", R"(\\\\)", R"(\\\/)", R"(\\n)");

void escape(Output& output, std::string_view text, const Escapes& escapes) {
  std::size_t plain = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (!escapes.special[c]) continue;
    output << text.substr(plain, i - plain) << escapes.of[c];
    plain = i + 1;
  }
  output << text.substr(plain);
}

/// The answer is sent as a text and as an object. `write(inText)` writes it once.
template <class Write>
void respond(Output& output, Write write) {
  output << R"({"id":1,"jsonrpc":"2.0","result":{"content":[{"text":")";
  write(true);
  output << R"(","type":"text"}],"structuredContent":)";
  write(false);
  output << "}}\n";
  output.flush();
}

void writeJSON(Output& output, std::string_view json, bool inText) {
  if (inText) {
    escape(output, json, once);
  } else {
    output << json;
  }
}

void getNote(Output& output, bench::Database& database, std::string_view identifier) {
  Statement note(database, "SELECT json FROM note JOIN told USING (id) WHERE identifier = ?1");
  note.bind(1, identifier).step();
  respond(output, [&](bool inText) {
    writeJSON(output, R"({"metadata":)", inText);
    writeJSON(output, note.text(0), inText);
    output << "}";
  });
}

struct Found {
  std::string_view json;
  std::size_t matches = 0;
};

/// What a search answers. `next` is false behind the last note.
template <class Next>
void respondFound(Output& output, Next next) {
  std::string found;
  for (Found note; next(note);) {
    found += found.empty() ? R"({"matchCount":)" : R"(,{"matchCount":)";
    found.append(std::to_string(note.matches)).append(R"(,"metadata":)").append(note.json) += '}';
  }
  respond(output, [&](bool inText) {
    writeJSON(output, R"({"results":[)", inText);
    writeJSON(output, found, inText);
    output << "]}";
  });
}

/// Walks down the list until 20 notes hold the word.
void searchNewest(Output& output, bench::Database& database, std::string_view word) {
  Statement notes(database,
                  "SELECT json, text FROM note JOIN told USING (id) JOIN body USING (id) "
                  "WHERE location = 0 ORDER BY pinned DESC, modified DESC");
  int left = 20;
  respondFound(output, [&](Found& found) {
    while (left > 0 && notes.step()) {
      found.matches = floors::countWord(notes.text(1), word);
      if (found.matches == 0) continue;
      found.json = notes.text(0);
      --left;
      return true;
    }
    return false;
  });
}

void searchNotes(Output& output, bench::Database& database, std::string_view word) {
  Statement candidates(database, "SELECT rowid FROM trigrams WHERE trigrams MATCH ?1");
  Statement body(database, "SELECT text FROM body WHERE id = ?1");
  const std::string trigrams = floors::trigramQuery(word);
  candidates.bind(1, std::string_view(trigrams));
  std::string found;  // [id, matches] of each, for SQLite to sort
  while (candidates.step()) {
    body.bind(1, candidates.integer(0)).step();
    const std::size_t matches = floors::countWord(body.text(0), word);
    body.reset();
    if (matches == 0) continue;
    found += (found.empty() ? "[[" : ",[") + std::to_string(candidates.integer(0)) + "," +
             std::to_string(matches) + "]";
  }
  found += found.empty() ? "[]" : "]";
  Statement notes(
      database,
      "SELECT told.json, value ->> 1 FROM json_each(?1) CROSS JOIN note ON note.id = value ->> 0 "
      "JOIN told ON told.id = note.id WHERE location = 0 ORDER BY pinned DESC, modified DESC");
  notes.bind(1, std::string_view(found));
  respondFound(output, [&](Found& next) {
    if (!notes.step()) return false;
    next = {notes.text(0), static_cast<std::size_t>(notes.integer(1))};
    return true;
  });
}

void createNote(Output& output, floors::NewNotes& notes, std::string_view title) {
  notes.addSmall(title);
  respond(output, [&](bool inText) {
    writeJSON(output, R"({"title":")", inText);
    writeJSON(output, title, inText);
    writeJSON(output, R"("})", inText);
  });
}

void listNotesWithContent(Output& output, bench::Database& database) {
  Statement notes(database,
                  "SELECT json, text FROM note JOIN told USING (id) JOIN body USING (id) "
                  "WHERE location = 0 ORDER BY pinned DESC, modified DESC");
  respond(output, [&](bool inText) {
    writeJSON(output, R"({"notes":[)", inText);
    for (bool first = true; notes.step(); first = false) {
      writeJSON(output, first ? R"({"content":")" : R"(,{"content":")", inText);
      escape(output, notes.text(1), inText ? twice : once);
      writeJSON(output, R"(","metadata":)", inText);
      writeJSON(output, notes.text(0), inText);
      output << "}";
    }
    notes.reset();
    output << "]}";
  });
}

}  // namespace

int main(int, char** argv) {
  Output output;
  bench::Database database(argv[1]);
  floors::NewNotes newNotes(database, floors::NewNotes::Index::trigrams);
  char* line = nullptr;
  std::size_t capacity = 0;
  for (ssize_t size; (size = getline(&line, &capacity, stdin)) > 0;) {
    const std::string_view request(line, static_cast<std::size_t>(size));
    const std::string_view tool = valueBehind(request, R"("name":")");
    if (tool == "get_note") getNote(output, database, valueBehind(request, R"("id":")"));
    if (tool == "search_notes") {
      const bool newest = request.find(R"("limit":20)") != request.npos;
      (newest ? searchNewest : searchNotes)(output, database, valueBehind(request, R"("query":")"));
    }
    if (tool == "create_note") createNote(output, newNotes, valueBehind(request, R"("title":")"));
    if (tool == "list_notes") listNotesWithContent(output, database);
  }
}

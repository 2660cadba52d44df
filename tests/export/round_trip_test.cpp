#include <gtest/gtest.h>

#include <map>
#include <random>

#include "domain/note_store.h"
#include "export/exporter.h"
#include "import/importer.h"
#include "platform/system/hashing.h"
#include "store/make_store.h"
#include "support/foreign_client.h"
#include "support/throwaway_home.h"

namespace tavi {
namespace {

namespace fs = std::filesystem;

/// Generates notes of all kinds from a seed.
class RandomNotes {
 public:
  explicit RandomNotes(unsigned seed) : random_(seed) {}

  ImportedNote note() {
    ImportedNote made{.id = platform::system::newUUID(), .text = text()};
    if (below(5) > 0) made.created = Instant{below(2'000'000'000) + below(1'000'000) / 1e6};
    if (below(5) > 0) made.modified = Instant{below(2'000'000'000) / 7.0};
    if (below(3) == 0) made.pins.emplace_back("global");
    if (below(3) == 0) made.pins.push_back(any({"#work", "#multi word#", "#global", "#2024#"}));
    made.location = static_cast<NoteLocation>(below(3));
    for (unsigned i = below(4); i > 0; --i) addFile(made);
    return made;
  }

 private:
  unsigned below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }
  std::string any(const std::vector<std::string>& of) {
    return of[below(static_cast<unsigned>(of.size()))];
  }

  std::string text() {
    std::string made;
    for (unsigned i = below(8); i > 0; --i)
      made +=
          any({"# Same title\n", "# ../A: \"b\"?\n", "# " + std::string(300, 'x') + "\n", "---\n",
               "tavi: 1\n", "---\ntitle: [\n---\n", "#work #multi word#\r\n", "text\n\n\n",
               "\xEF\xBB\xBF", std::string("\0", 1), "```\nopen", "[[wiki|x]] [a](b.md)\n", "\r",
               "![](photo.png)\n", "# trash\n", "# CON\n", "# \xE2\x80\xAE\n", " "});
    return made;
  }

  void addFile(ImportedNote& note) {
    const std::string name = any({"photo.png", "note.md", "Same title.md", ".hidden", "a\nb",
                                  "x #1?.pdf", "été.txt", "con", std::string(255, 'n')});
    for (const ImportedNote::File& file : note.files)
      if (file.filename == name) return;
    note.files.push_back({name, std::string(below(3000), static_cast<char>(below(256)))});
  }

  std::mt19937 random_;
};

/// All properties of a note that are compared, and the bytes of its files.
struct Kept {
  std::string title, text;
  double created, modified;
  std::vector<std::string> tags, pins, attachments, bytes;
  NoteLocation location;
  bool operator==(const Kept&) const = default;
};

std::map<std::string, Kept> allNotes() {
  const auto store = makeStore();
  std::map<std::string, Kept> notes;
  store->listNotesWithContent({})->forEach([&](const Note& note) {
    const NoteMetadata& m = note.metadata;
    Kept kept{m.title,       note.content, m.created.seconds, m.modified.seconds, m.tags, m.pins,
              m.attachments, {},           m.location};
    for (const std::string& file : m.attachments)
      kept.bytes.push_back(store->readAttachment(m.id, file));
    notes.emplace(m.id, std::move(kept));
  });
  return notes;
}

exporting::ExportReport exportTo(const fs::path& folder) {
  return exporting::Exporter(folder).run(*makeStore());
}

import::Report importFrom(const fs::path& folder){const auto store = makeImportingStore();
import::Importer importer({}, store.get(), false, [](const auto&, const auto&){});
importer.run({vault::readFolder(folder)});
return importer.report();
}  // namespace

TEST(RoundTrip, AnImportOfAnExportGivesTheSameStoreBack) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    SCOPED_TRACE(seed);
    const support::ThrowawayHome first;
    const fs::path folder = first.path() / "export";
    {
      RandomNotes random(seed);
      const auto store = makeImportingStore();
      for (int i = 0; i < 40; ++i) store->importNote(random.note());
      store->saveImported();
    }
    const auto before = allNotes();
    const auto exported = exportTo(folder);
    EXPECT_EQ(exported.text().find("Left"), std::string::npos) << exported.text();
    EXPECT_EQ(exportTo(folder).written, 0U) << "nothing has changed";

    const support::ThrowawayHome second;
    const import::Report imported = importFrom(folder);
    EXPECT_EQ(imported.notes, 40U) << imported.text();
    EXPECT_TRUE(allNotes() == before);
    const import::Report again = importFrom(folder);
    EXPECT_EQ(again.unchanged, 40U) << again.text();
    const auto elsewhere = exportTo(folder);
    EXPECT_EQ(elsewhere.written + elsewhere.movedAway, 0U) << elsewhere.text();
  }
}

}  // namespace tavi
}  // namespace tavi

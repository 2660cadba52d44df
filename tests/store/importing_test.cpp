#include "store/store_fixture.h"

namespace tavi {
namespace {

class Importing : public StoreTest {};

TEST_F(Importing, TakesANoteInWithAllThatIsKnownOfIt) {
  const ImportedNote note{.id = "11111111-2222-4333-8444-555555555555",
                          .text = "# Mars\n\n![](a.png) #red",
                          .created = Instant{1000.25},
                          .modified = Instant{2000.5},
                          .pins = {"global", "red"},
                          .location = NoteLocation::archive,
                          .files = {{"b.txt", "b"}, {"a.png", std::string(300'000, 'a')}}};
  const auto store = makeImportingStore();
  EXPECT_TRUE(store->importNote(note));
  EXPECT_EQ(value("SELECT count(*) FROM note"), "0") << "held, not saved";
  store->saveImported();

  const Note read = fresh()->noteWithID(note.id);
  EXPECT_EQ(read.content, note.text);
  EXPECT_EQ(read.metadata.title, "Mars");
  EXPECT_EQ(read.metadata.created.seconds, 1000.25);
  EXPECT_EQ(read.metadata.modified.seconds, 2000.5);
  EXPECT_EQ(read.metadata.pins, (Texts{"global", "#red"}));
  EXPECT_EQ(read.metadata.location, NoteLocation::archive);
  EXPECT_EQ(read.metadata.attachments, (Texts{"b.txt", "a.png"}));
  EXPECT_EQ(fresh()->readAttachment(note.id, "a.png"), note.files[1].bytes);

  EXPECT_FALSE(makeImportingStore()->importNote(note)) << "a note of this id is there";
}

TEST_F(Importing, KeepsNothingOfABatchWhenAFileCannotBeStored) {
  const auto store = makeImportingStore();
  EXPECT_TRUE(store->importNote({.text = "# One", .files = {{"a.txt", "a"}}}));
  EXPECT_THROW(store->importNote({.text = "# Two", .files = {{"../b.txt", "b"}}}),
               std::runtime_error);
  store->saveImported();
  EXPECT_EQ(value("SELECT count(*) FROM note"), "0");
  EXPECT_TRUE(std::filesystem::is_empty(home.data() / "files/staged"));
}

}  // namespace
}  // namespace tavi

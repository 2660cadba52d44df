#include "store_fixture.h"

namespace tavi {
namespace {

class TagsAndPins : public StoreTest {
 protected:
  Texts tags(const std::string& id) { return metadata(id).tags; }
};

TEST_F(TagsAndPins, AddsAndRemovesWithoutTouchingTheDate) {
  const std::string id = create("# T\n#old");
  otherProgram("UPDATE note SET modificationDate = 1000");
  fresh()->addTags(id, {"#new", "old", "two words"});
  EXPECT_EQ(tags(id), (Texts{"new", "old", "two words"}));
  EXPECT_EQ(text(id), "# T\n#old #new #two words#");
  fresh()->removeTags(id, {"old", "nosuch", "#two words#"});
  EXPECT_EQ(tags(id), Texts{"new"});
  EXPECT_EQ(metadata(id).modified.seconds, 1000);
}

TEST_F(TagsAndPins, RenamesWithChildrenAndPinsEverywhereButInCode) {
  const std::string a = create("# A\n#work and `#work`");
  const std::string b = create("# B\n#work/draft #other");
  const std::string c = create("# C\n#workshop");
  fresh()->pinNoteInTag(a, "work");
  otherProgram("UPDATE note SET modificationDate = 1000");
  EXPECT_EQ(fresh()->tagNoteCount("work"), 2);
  EXPECT_EQ(fresh()->renameTag("#work", "job"), 2);
  EXPECT_EQ(text(a), "# A\n#job and `#work`");
  EXPECT_EQ(tags(b), (Texts{"job/draft", "other"}));
  EXPECT_EQ(tags(c), Texts{"workshop"});
  EXPECT_EQ(metadata(a).pins, Texts{"#job"});
  EXPECT_EQ(metadata(a).modified.seconds, 1000);
  EXPECT_FALSE(fresh()->tagExists("work"));
  EXPECT_EQ(fresh()->renameTag("nosuch", "x"), 0);
  EXPECT_FALSE(fresh()->tagExists("x"));
}

TEST_F(TagsAndPins, MergesWithoutADoubledMention) {
  const std::string id = create("# T\n\n#old #new");
  EXPECT_EQ(fresh()->renameTag("old", "new"), 1);
  EXPECT_EQ(text(id), "# T\n\n#new");
  EXPECT_EQ(fresh()->listTags({}), Texts{"new"});
}

TEST_F(TagsAndPins, DeletesATagAndLeavesItsChildren) {
  const std::string a = create("# A\ntext #work more");
  const std::string b = create("# B\n#work/draft");
  EXPECT_EQ(fresh()->deleteTag("work"), 1);
  EXPECT_EQ(tags(a), Texts{});
  EXPECT_EQ(tags(b), Texts{"work/draft"});
  EXPECT_EQ(fresh()->deleteTag("nosuch"), 0);
}

TEST_F(TagsAndPins, ChangesOnlyTheRecordOfALockedNote) {
  const std::string locked = create("# T\n#work #work/draft #job #other");
  const std::string open = create("# T\n#work");
  fresh()->pinNoteInTag(locked, "work/draft");
  lock(locked);
  otherProgram("UPDATE note SET modificationDate = 1000");
  EXPECT_EQ(fresh()->renameTag("work", "job"), 2);
  EXPECT_EQ(tags(locked), (Texts{"job", "job/draft", "other"}));
  EXPECT_EQ(metadata(locked).pins, Texts{"#job/draft"});
  EXPECT_EQ(text(open), "# T\n#job");
  EXPECT_EQ(fresh()->deleteTag("job"), 2);
  EXPECT_EQ(tags(locked), (Texts{"job/draft", "other"}));
  EXPECT_EQ(value("SELECT text FROM note WHERE encrypted = 1"),
            "# T\n#work #work/draft #job #other");
  EXPECT_EQ(value("SELECT group_concat(DISTINCT modificationDate) FROM note"), "1000.0");
}

// Rows and text can differ: another program may write only one of the two, and renaming a tag does
// not change the text of a locked note.
TEST_F(TagsAndPins, BringRowsAndTextIntoStep) {
  const auto note = [&](const std::string& text, const Texts& rows) {
    const std::string id = create("");
    otherProgram("UPDATE note SET text = '" + text + "' WHERE uniqueIdentifier = '" + id + "'");
    for (const std::string& row : rows) {
      otherProgram("INSERT OR IGNORE INTO tag (title) VALUES ('" + row + "')");
      otherProgram(
          "INSERT INTO noteTag SELECT note.id, tag.id FROM note, tag WHERE "
          "uniqueIdentifier = '" +
          id + "' AND tag.title = '" + row + "'");
    }
    return id;
  };
  const std::string onlyRow = note("# T", {"work"});
  fresh()->removeTags(onlyRow, {"work"});
  EXPECT_EQ(tags(onlyRow), Texts{});
  const std::string onlyText = note("# T\n#work", {});
  fresh()->removeTags(onlyText, {"work"});
  EXPECT_EQ(text(onlyText), "# T");

  const std::string rowAlone = note("# T", {"work"});
  const std::string textAlone = note("# T\n#work", {});
  for (const std::string& id : {rowAlone, textAlone}) {
    fresh()->addTags(id, {"work"});
    EXPECT_EQ(tags(id), Texts{"work"});
    EXPECT_NE(text(id).find("#work"), std::string::npos);
  }
  const std::string low = note("# T\n#home", {"home", "work/low"});
  EXPECT_EQ(fresh()->renameTag("work", "job"), 3);
  EXPECT_EQ(text(low), "# T\n#home #job/low");
  EXPECT_EQ(tags(low), (Texts{"home", "job/low"}));
  EXPECT_EQ(fresh()->renameTag("home", "home"), 1);
  const std::string gone = note("# T", {"job"});
  EXPECT_EQ(fresh()->deleteTag("job"), 3);
  EXPECT_EQ(tags(gone), Texts{});

  for (const std::string odd : {"a*b", "a#b", "  c", "d  e", "f\n", "g//h", "e\xCC\x81"}) {
    const std::string one = note("# T", {odd});
    fresh()->removeTags(one, {odd});
    EXPECT_EQ(tags(one), Texts{}) << odd;
    const std::string all = note("# T", {odd});
    EXPECT_EQ(fresh()->deleteTag(odd), 1) << odd;
    EXPECT_EQ(tags(all), Texts{}) << odd;
  }
}

TEST_F(TagsAndPins, RenamesATagIntoOneBelowIt) {
  const std::string id = create("# T\n#work #work/draft");
  EXPECT_EQ(fresh()->renameTag("work", "work/old"), 1);
  EXPECT_EQ(tags(id), (Texts{"work/old", "work/old/draft"}));
}

TEST_F(TagsAndPins, PinsAndMovesLockedNotesToo) {
  const std::string id = create("# T\n#work/draft");
  lock(id);
  EXPECT_EQ(fresh()->moveNote(id, NoteLocation::archive).location, NoteLocation::archive);
  EXPECT_EQ(fresh()->moveNote(id, NoteLocation::trash).location, NoteLocation::trash);
  EXPECT_EQ(fresh()->moveNote(id, NoteLocation::notes).location, NoteLocation::notes);
  EXPECT_EQ(fresh()->pinNote(id).pins, Texts{"global"});
  EXPECT_EQ(fresh()->pinNoteInTag(id, "#work").pins, (Texts{"global", "#work"}));
  EXPECT_EQ(fresh()->listPins({}), (Texts{"global", "#work"}));
  EXPECT_EQ(refusal([&] { fresh()->pinNoteInTag(id, "nosuch"); }), "tag_not_found");
  EXPECT_FALSE(fresh()->unpinNoteInTag(id, "work/draft").pins);
  fresh()->unpinNoteInTag(id, "work");
  EXPECT_EQ(fresh()->unpinNote(id).pins, Texts{});
  EXPECT_EQ(fresh()->listPins({}), Texts{});
  EXPECT_EQ(value("SELECT text FROM note"), "# T\n#work/draft");
}

TEST_F(TagsAndPins, MovesThroughTheNotesInOneSave) {
  const std::string id = create("# T");
  fresh()->moveNote(id, NoteLocation::trash);
  const WriteResponse moved = fresh()->moveNote(id, NoteLocation::archive);
  EXPECT_EQ(moved.location, NoteLocation::archive);
  EXPECT_EQ(value("SELECT trashed || archived FROM note"), "01");
  const std::string version = value("SELECT version FROM noteSummary");
  EXPECT_FALSE(fresh()->moveNote(id, NoteLocation::archive).location);
  EXPECT_EQ(value("SELECT version FROM noteSummary"), version) << "nothing was written";
  EXPECT_EQ(fresh()->moveNote(id, NoteLocation::notes).location, NoteLocation::notes);
  otherProgram("UPDATE note SET trashed = 1, archived = 1");
  EXPECT_EQ(fresh()->moveNote(id, NoteLocation::notes).location, NoteLocation::notes);
}

}  // namespace
}  // namespace tavi

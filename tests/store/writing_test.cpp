#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <set>
#include <thread>

#include "domain/content_hash.h"
#include "store_fixture.h"

namespace tavi {
namespace {

class Writing : public StoreTest {
 protected:
  void tagsAtTop() {
    const auto folder =
        home.path() / "Library/Containers/net.kelvaro.tavi/Data/Library/Preferences";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "net.kelvaro.tavi.plist")
        << "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
           "<key>KVTagPosition</key><string>KVTagPositionTop</string></dict></plist>";
  }
  static EditOperation replaceEdit(const std::string& find, const std::string& by) {
    return {find, {EditAction::Kind::replace, by}, false, false, false};
  }
  /// Creates a note whose text links to its two attachments.
  std::string noteWithFiles() {
    const std::string id = create("# Files\n![](a.png)\n[b.zip](b.zip)");
    otherProgram("INSERT INTO file (note, filename) VALUES (1, 'a.png'), (1, 'b.zip')");
    return id;
  }
};

TEST_F(Writing, ComposesANewNoteWithItsTagsWhereTheSettingPutsThem) {
  const Texts tags{"#work/draft#", "two words", "inline", ""};
  EXPECT_EQ(fresh()->createNote("T", "Body #inline", tags).content,
            "# T\n\nBody #inline\n\n#work/draft #two words#");
  EXPECT_EQ(fresh()->createNote("T", {}, {}).content, "# T");
  tagsAtTop();
  const Note top = fresh()->createNote("T", "Body", tags);
  EXPECT_EQ(top.content, "# T\n#work/draft #two words# #inline\n\nBody");
  EXPECT_EQ(top.metadata.tags, (Texts{"inline", "two words", "work/draft"}));
  EXPECT_EQ(metadata(top.metadata.id).contentHash, ContentHash::of(top.content));
}

TEST_F(Writing, CreatesFromTextAsItStands) {
  const std::string raw =
      "\xEF\xBB\xBF"
      "first line\r\n\ttabs  \r\n";
  const Note note = fresh()->createNoteFromText(raw, {});
  EXPECT_EQ(note.content, raw);
  EXPECT_EQ(text(note.metadata.id), raw);
  EXPECT_EQ(note.metadata.title, "first line");
  EXPECT_EQ(fresh()->createNoteFromText("text", {"a", "b c"}).metadata.tags, (Texts{"a", "b c"}));
}

TEST_F(Writing, CreatesIfAbsentOnlyWhenNoActiveNoteHasTheTitle) {
  const std::string id = create("# Here\nold");
  const Note existing = fresh()->createNoteIfAbsent("HERE", "new", {"t"});
  EXPECT_EQ(existing.metadata.id, id);
  EXPECT_EQ(existing.content, "# Here\nold");
  fresh()->moveNote(id, NoteLocation::trash);
  EXPECT_NE(fresh()->createNoteIfAbsent("Here", "new", {}).metadata.id, id);
  create("# here");
  EXPECT_EQ(refusal([&] { fresh()->createNoteIfAbsent("Here", {}, {}); }), "title_ambiguous");
}

TEST_F(Writing, FindsTheNoteThatTheVeryTitleMade) {
  for (const std::string title : {"Fix `foo` bug", "Plan ", "C #", "**Important** note", "#",
                                  "two\nlines", "<!-- x -->", "&amp;", "[a](b)", "- [ ] task"}) {
    const Note first = fresh()->createNoteIfAbsent(title, "body of " + title, {"tag"});
    const Note second = fresh()->createNoteIfAbsent(title, "body of " + title, {"tag"});
    EXPECT_EQ(second.metadata.id, first.metadata.id) << title;
  }
  EXPECT_EQ(fresh()->createNoteIfAbsent("&amp;", {}, {}).metadata.title, "&");
  const std::string id = create("# Once");
  create("# Once");
  otherProgram("UPDATE note SET permanentlyDeleted = 1 WHERE id = (SELECT max(id) FROM note)");
  EXPECT_EQ(fresh()->createNoteIfAbsent("Once", {}, {}).metadata.id, id);
  EXPECT_EQ(fresh()->noteWithTitle("Once").metadata.id, id);
}

TEST_F(Writing, MakesOneNoteOfATitleThatManyAskForAtOnce) {
  for (int round = 0; round < 5; ++round) {
    const std::string title = "Race " + std::to_string(round);
    std::set<std::string> ids;
    std::mutex guard;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        const std::string id = fresh()->createNoteIfAbsent(title, {}, {}).metadata.id;
        const std::lock_guard lock(guard);
        ids.insert(id);
      });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ids.size(), 1U);
  }
}

// Another program changed only the text, or stored it as a BLOB.
TEST_F(Writing, DerivesAfreshFromTheSameText) {
  const std::string id = noteWithFiles();
  const std::string text = "# New\n[b.zip](b.zip) ![](a.png) #tag";
  otherProgram("UPDATE note SET text = CAST('" + text + "' AS BLOB)");
  fresh()->overwriteNote(id, text, {}, {});
  const NoteMetadata now = metadata(id);
  EXPECT_EQ(now.title, "New");
  EXPECT_EQ(now.tags, Texts{"tag"});
  EXPECT_EQ(now.attachments, (Texts{"b.zip", "a.png"}));
  const std::string version = value("SELECT version FROM noteSummary");
  fresh()->overwriteNote(id, text, {}, {});
  EXPECT_EQ(value("SELECT version FROM noteSummary"), version) << "nothing was written";
  fresh()->insertText(id, "more", InsertPosition::end);
  EXPECT_EQ(this->text(id), text + "\nmore");
}

TEST_F(Writing, AnswersWithWhatChanged) {
  const std::string id = create("# T\nbody #tag");
  const WriteResponse response = fresh()->editNote(id, replaceEdit("#tag", "- [ ] x"), {});
  EXPECT_FALSE(response.id || response.title || response.locked || response.created ||
               response.location || response.pins || response.attachments || response.content);
  EXPECT_EQ(response.tags, Texts{});
  EXPECT_EQ(response.contentHash, metadata(id).contentHash);
  EXPECT_TRUE(response.modified && response.contentLength);
  const WriteResponse nothing = fresh()->editNote(id, replaceEdit("body", "body"), {});
  EXPECT_FALSE(nothing.contentHash || nothing.modified);
}

TEST_F(Writing, KeepsTheModificationDateWhenAsked) {
  const std::string id = create("# T\nbody");
  otherProgram("UPDATE note SET modificationDate = 1000");
  fresh(true)->insertText(id, "more", InsertPosition::end);
  EXPECT_EQ(metadata(id).modified.seconds, 1000);
  fresh()->insertText(id, "more", InsertPosition::end);
  EXPECT_GT(metadata(id).modified.seconds, 1000);
}

TEST_F(Writing, RefusesATextThatChangedSinceItWasRead) {
  const std::string id = create("milk");
  const std::string hash = metadata(id).contentHash;
  otherProgram("UPDATE note SET text = 'milk, eggs'");
  EXPECT_EQ(refusal([&] { fresh()->overwriteNote(id, "tea", hash, {}); }), "hash_mismatch");
  EXPECT_EQ(text(id), "milk, eggs");
  fresh()->overwriteNote(id, "tea", metadata(id).contentHash, {});
  EXPECT_EQ(text(id), "tea");
  EXPECT_EQ(refusal([&] { fresh()->overwriteNote(id, "x", "E3B0C44", {}); }), "hash_mismatch");
}

TEST_F(Writing, RefusesToLoseAnAttachmentThatNobodyNamed) {
  const std::string id = noteWithFiles();
  const std::string before = text(id);
  const auto overwrite = [&](const std::string& next, const RemovalGate& gate) {
    return refusal([&] { fresh()->overwriteNote(id, next, {}, gate); });
  };
  const std::string withoutImage = "# Files\n[b.zip](b.zip)";
  EXPECT_EQ(overwrite(withoutImage, {}), "attachment_removal_blocked");
  EXPECT_EQ(overwrite(withoutImage, {.expected = {{"a.png", "b.zip"}}}),
            "attachment_removal_blocked");
  EXPECT_EQ(overwrite(before + " more", {.expected = {{"a.png"}}}), "attachment_removal_blocked");
  EXPECT_EQ(text(id), before);
  EXPECT_EQ(metadata(id).attachments, (Texts{"a.png", "b.zip"}));

  EXPECT_EQ(overwrite(withoutImage, {.expected = {{"a.png"}}}), "not refused");
  EXPECT_EQ(metadata(id).attachments, Texts{"b.zip"});
  EXPECT_EQ(overwrite("# Gone", {.expected = {{"wrong"}}, .force = true}), "not refused");
  EXPECT_EQ(value("SELECT count(*) FROM file"), "0");
}

TEST_F(Writing, TheGateUndoesTheUpdateInAStoreThatIsUsedOn) {
  const std::string id = noteWithFiles();
  const auto store = fresh();
  EXPECT_EQ(refusal([&] { store->overwriteNote(id, "# Other", {}, {}); }),
            "attachment_removal_blocked");
  EXPECT_EQ(store->noteWithID(id).metadata.title, "Files");
  store->pinNote(id);
  EXPECT_EQ(text(id), "# Files\n![](a.png)\n[b.zip](b.zip)");
}

TEST_F(Writing, DoesNotBlameAnEditForAFileThatWasNeverLinked) {
  const std::string id = create("# T\nbody");
  otherProgram("INSERT INTO file (note, filename) VALUES (1, 'loose.bin')");
  fresh()->editNote(id, replaceEdit("body", "text"), {});
  EXPECT_EQ(metadata(id).attachments, Texts{"loose.bin"});
}

TEST_F(Writing, ABatchIsAllOrNothing) {
  const std::string id = create("one two");
  EXPECT_EQ(refusal([&] {
              fresh()->editNoteBatch(id, {replaceEdit("one", "1"), replaceEdit("nine", "9")}, {});
            }),
            "string_not_found");
  EXPECT_EQ(text(id), "one two");
  fresh()->editNoteBatch(id, {replaceEdit("one", "1"), replaceEdit("1 two", "12")}, {});
  EXPECT_EQ(text(id), "12");
}

TEST_F(Writing, RefusesLockedNotes) {
  const std::string id = create("# T\ntext");
  lock(id);
  const auto refused = [&](auto action) { return refusal([&] { action(*fresh()); }); };
  EXPECT_EQ(refused([&](NoteStore& s) { s.editNote(id, replaceEdit("t", "x"), {}); }),
            "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.overwriteNote(id, "x", {}, {.force = true}); }),
            "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.insertText(id, "x", InsertPosition::end); }),
            "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.addTags(id, {"x"}); }), "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.removeTags(id, {"x"}); }), "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.addAttachment(id, "x", "x"); }), "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.deleteAttachment(id, "x"); }), "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.readAttachment(id, "x"); }), "note_locked");
  EXPECT_EQ(refused([&](NoteStore& s) { s.listAttachments(id); }), "note_locked");
  EXPECT_EQ(value("SELECT text FROM note"), "# T\ntext");
}

// Large texts are read and compared in parts. The other program drops the triggers first, so that
// only the text shows its change.
TEST_F(Writing, FindsAChangeInALargeText) {
  const std::string large = "# Large\n" + std::string(500'000, 'x') + "\nend";
  const std::string id = create(large);
  fresh()->insertText(id, "more", InsertPosition::end);
  EXPECT_EQ(text(id), large + "\nmore");
  const auto ours = fresh();
  ours->insertText(id, "ours", InsertPosition::end);
  otherProgram("DROP TRIGGER noteUpdated; DROP TRIGGER noteRewritten");
  otherProgram("UPDATE note SET text = replace(text, 'end', 'End')");
  EXPECT_EQ(refusal([&] { ours->insertText(id, "lost", InsertPosition::end); }),
            "concurrent_modification");
  otherProgram("UPDATE note SET text = NULL");
  EXPECT_EQ(refusal([&] { ours->insertText(id, "lost", InsertPosition::end); }),
            "concurrent_modification");
}

TEST_F(Writing, RewritesALargeTextAfterARefusal) {
  const std::string large = "# Large\n" + std::string(500'000, 'x');
  const std::string id = create(large + "\n");
  const auto ours = fresh();
  ours->addAttachment(id, "bytes", "a.txt");
  EXPECT_EQ(refusal([&] { ours->overwriteNote(id, large + "y", std::nullopt, {}); }),
            "attachment_removal_blocked");
  ours->addTags(id, {"one", "two"});  // two texts, one save
  ours->addTags(id, {"three"});
  EXPECT_EQ(text(id).substr(large.size()), "\n[a.txt](a.txt)\n\n#one #two #three\n");
}

}  // namespace
}  // namespace tavi

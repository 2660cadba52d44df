#include <filesystem>
#include <fstream>

#include "store_fixture.h"

namespace tavi {
namespace {

namespace fs = std::filesystem;

class Attachments : public StoreTest {
 protected:
  std::size_t storedFiles() {
    std::size_t count = 0;
    for (const auto& entry : fs::recursive_directory_iterator(home.data() / "files")) {
      if (entry.is_regular_file()) ++count;
    }
    return count;
  }
};

TEST_F(Attachments, AreLinkedByTheirKindAndReadBack) {
  const std::string id = create("# T");
  const std::string bytes("\0\xFF binary", 9);
  for (const char* name : {"a.png", "b.pdf", "c.svg", "d e(1).txt"}) {
    fresh()->addAttachment(id, bytes, name);
    EXPECT_EQ(fresh()->readAttachment(id, name), bytes) << name;
  }
  EXPECT_EQ(metadata(id).attachments, (Texts{"a.png", "b.pdf", "c.svg", "d e(1).txt"}));
  const std::string now = text(id);
  EXPECT_NE(now.find("![](a.png)"), std::string::npos) << now;
  EXPECT_NE(now.find("[b.pdf](b.pdf)<!-- {\"preview\":\"true\"} -->"), std::string::npos) << now;
  EXPECT_NE(now.find("[c.svg](c.svg)"), std::string::npos) << now;
  EXPECT_EQ(now.find("![](c.svg)"), std::string::npos) << now;
  EXPECT_EQ(fresh()->listAttachments(id).at(3).size, 9);
}

// Whatever Markdown or a reader of URLs might take for something else is encoded in the link. So
// the file is known as linked: an edit keeps it, losing the link is refused, deleting takes the
// link.
TEST_F(Attachments, OfAnyNameAreFoundAgainByTheirLink) {
  for (const std::string name : {"plain.txt",
                                 "with blank.pdf",
                                 "100%.png",
                                 "a%20b.txt",
                                 "(1) [x] <y>.svg",
                                 "a#b?c=d&e;f.jpg",
                                 "*_`~|\\.md",
                                 "\"quoted\" 'name'.gif",
                                 "colon: a.txt",
                                 "http:x.txt",
                                 "  blanks  ",
                                 "line\nbreak\ttab",
                                 "Größe 見 🦊.HEIC",
                                 "e\xCC\x81.png",
                                 "\xC3\xA9.png",
                                 ".hidden",
                                 "-rf",
                                 "no extension",
                                 "a.tar.gz",
                                 "!bang.png",
                                 "^1",
                                 "@x.y",
                                 "www.example.org",
                                 "&amp;.txt"}) {
    const std::string id = create("# T\nbody");
    const std::string before = text(id);
    fresh()->addAttachment(id, "bytes", name);
    const std::string linked = text(id);
    fresh()->insertText(id, "more", InsertPosition::end);
    EXPECT_EQ(metadata(id).attachments, Texts{name});
    EXPECT_EQ(fresh()->readAttachment(id, name), "bytes") << name;
    EXPECT_EQ(refusal([&] { fresh()->overwriteNote(id, before, {}, {}); }),
              "attachment_removal_blocked")
        << linked;
    fresh()->overwriteNote(id, linked, {}, {});
    fresh()->deleteAttachment(id, name);
    EXPECT_EQ(text(id), before) << linked;
    EXPECT_EQ(metadata(id).attachments, Texts{}) << linked;
  }
  EXPECT_EQ(storedFiles(), 0U);
}

TEST_F(Attachments, GiveWayToAFileOfTheSameName) {
  const std::string id = create("# T");
  fresh()->addAttachment(id, "1", "photo.jpg");
  EXPECT_EQ(fresh()->addAttachment(id, "2", "photo.jpg").attachments,
            (Texts{"photo.jpg", "photo 2.jpg"}));
  fresh()->addAttachment(id, "3", "photo.jpg");
  EXPECT_EQ(fresh()->readAttachment(id, "photo.jpg"), "1");
  EXPECT_EQ(fresh()->readAttachment(id, "photo 3.jpg"), "3");
}

TEST_F(Attachments, AreDeletedWithTheirLinkAndBytes) {
  const std::string id = create("# T\nbody");
  const std::string before = text(id);
  fresh()->addAttachment(id, "x", "a b.zip");
  EXPECT_EQ(storedFiles(), 1U);
  fresh()->deleteAttachment(id, "a b.zip");
  EXPECT_EQ(text(id), before);
  EXPECT_EQ(metadata(id).attachments, Texts{});
  EXPECT_EQ(storedFiles(), 0U);
  EXPECT_EQ(refusal([&] { fresh()->deleteAttachment(id, "a b.zip"); }), "attachment_not_found");
  otherProgram("INSERT INTO file (note, filename) VALUES (1, 'loose')");
  fresh()->deleteAttachment(id, "loose");
  EXPECT_EQ(metadata(id).attachments, Texts{});
}

TEST_F(Attachments, RefuseAHostileNameAndWriteNothing) {
  const std::string id = create("# T");
  const std::string before = text(id);
  for (const std::string& name :
       {std::string(), std::string("."), std::string(".."), std::string("../x"),
        std::string("/etc/x"), std::string("a\0b", 3), std::string(300, 'x'),
        std::string("\xFF.txt")}) {
    std::string said;
    try {
      fresh()->addAttachment(id, "x", name);
    } catch (const std::runtime_error& error) {
      said = error.what();
    }
    EXPECT_TRUE(said.starts_with("The file name \"") && said.ends_with(".")) << name << said;
  }
  EXPECT_EQ(text(id), before);
  EXPECT_EQ(storedFiles(), 0U);
  EXPECT_TRUE(fs::is_empty(home.temporary()));
}

TEST_F(Attachments, SayWhenTheBytesAreGone) {
  const std::string id = create("# T");
  otherProgram(
      "INSERT INTO file (note, filename, storedName) VALUES (1, 'gone.bin', 'nowhere'), "
      "(1, 'climb.bin', '../tavi.sqlite')");
  EXPECT_EQ(refusal([&] { fresh()->readAttachment(id, "gone.bin"); }), "store_unavailable");
  EXPECT_EQ(refusal([&] { fresh()->readAttachment(id, "climb.bin"); }), "store_unavailable");
  EXPECT_EQ(refusal([&] { fresh()->readAttachment(id, "other"); }), "attachment_not_found");
}

TEST_F(Attachments, OfWritersThatDiedAreSweptUp) {
  const std::string id = create("# T");
  fresh()->addAttachment(id, "kept", "kept.bin");
  const fs::path staged = home.data() / "files/staged";
  fs::create_directories(staged);
  std::ofstream(staged / "orphan") << "x";
  // A writer that died between its commit and the move.
  const std::string stored = value("SELECT storedName FROM file");
  fs::rename(home.data() / "files" / stored, staged / stored);
  EXPECT_EQ(fresh()->readAttachment(id, "kept.bin"), "kept");
  EXPECT_FALSE(fs::exists(staged / "orphan"));
  EXPECT_TRUE(fs::exists(home.data() / "files" / stored));
  otherProgram("DELETE FROM file");
  fresh()->listTags({});
  EXPECT_EQ(storedFiles(), 0U);
}

}  // namespace
}  // namespace tavi

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>

#include "store/temporary_file.h"
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

/// Pieces of Markdown that may swallow a link, or a tag, above or below them.
std::string randomText(std::mt19937& random) {
  static const Texts pieces{"`",           "```\n",
                            "~~~\n",       "<!-- ",
                            "-->",         "<b ",
                            "<pre>\n",     "[",
                            "](",          ")",
                            "]: ",         "[a]: b\n",
                            "| a | b |\n", "|---|---|\n",
                            "> ",          "- ",
                            "1. ",         "    ",
                            "\t",          "\n",
                            "\n\n",        "*",
                            "\\",          "$$",
                            "---\n",       "# H\n",
                            "[^1]: x\n",   "#tag",
                            "#tag/low",    "#two words#",
                            "word ",       "<",
                            "![](f1.png)", "[f2.txt](f2.txt)",
                            "[[",          "]]",
                            "{",           "\"",
                            "'",           "&#10;",
                            "\r\n"};
  std::string text;
  for (std::size_t i = random() % 12; i > 0; --i) text += pieces[random() % pieces.size()];
  return text;
}

// Appending, tagging and attaching may turn a link into code or text. The file stays all the same:
// only an edit that was declared, and the deleting of this very file, take one away.
TEST_F(Attachments, AreLostByNoOperationThatDoesNotNameThem) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    std::mt19937 random(seed);
    const auto one = [&](std::size_t in) { return random() % in == 0; };
    const auto store = fresh();
    const std::string id = store->createNoteFromText("# T\n" + randomText(random), {}).metadata.id;
    std::map<std::string, std::string> expected;
    std::string history = store->noteWithID(id).content;
    const auto attach = [&] {
      const std::string name = std::string("f") + (one(2) ? "1" : "`") + (one(2) ? ".png" : ".txt");
      const std::string bytes = std::to_string(random());
      const WriteResponse response = store->addAttachment(id, bytes, name);
      for (const std::string& now : *response.attachments) expected.try_emplace(now, bytes);
    };
    attach();
    for (int step = 0; step < 12; ++step) {
      switch (random() % 7) {
        case 0:
        case 1:
          store->insertText(id, randomText(random),
                            one(2) ? InsertPosition::end : InsertPosition::beginning);
          break;
        case 2:
          store->addTags(id, {"tag", "new"});
          break;
        case 3:
          store->removeTags(id, {"tag", "new"});
          break;
        case 4:
          store->renameTag("tag", "new");
          break;
        case 5:
          attach();
          break;
        default:
          if (expected.size() < 2) break;
          store->deleteAttachment(id, expected.begin()->first);
          expected.erase(expected.begin());
      }
      history += "\n== step " + std::to_string(step) + "\n" + store->noteWithID(id).content;
      ASSERT_EQ(store->metadataWithID(id).attachments.size(), expected.size()) << seed << history;
    }
    const auto later = fresh();
    for (const auto& [name, bytes] : expected) {
      ASSERT_EQ(later->readAttachment(id, name), bytes) << seed << name << history;
    }
    ASSERT_EQ(later->listAttachments(id).size(), expected.size());
    otherProgram("DELETE FROM note");
  }
}

TEST_F(Attachments, AreKnownByAnyCanonicallyEquivalentName) {
  const std::string decomposed = "cafe\xCC\x81.png";
  const std::string composed = "caf\xC3\xA9.png";
  const std::string id = create("# T\nbody");
  const std::string before = text(id);
  fresh()->addAttachment(id, "bytes", decomposed);
  EXPECT_EQ(fresh()->readAttachment(id, composed), "bytes");
  fresh()->overwriteNote(id, before + "\n![](" + composed + ")", {}, {});
  EXPECT_EQ(metadata(id).attachments, Texts{decomposed});
  EXPECT_EQ(fresh()->addAttachment(id, "2", composed).attachments,
            (Texts{decomposed, "caf\xC3\xA9 2.png"}));
  const std::string other = "# T\n![](<caf\xC3\xA9 2.png>)";
  EXPECT_EQ(refusal([&] { fresh()->overwriteNote(id, other, {}, {.expected = {{composed}}}); }),
            "not refused");
  fresh()->addAttachment(id, "3", decomposed);
  fresh()->insertText(id, "[x](" + composed + ")", InsertPosition::end);
  fresh()->deleteAttachment(id, composed);
  EXPECT_EQ(text(id), other);
  EXPECT_EQ(metadata(id).attachments, Texts{"caf\xC3\xA9 2.png"});
  // Another program may have attached two whose names differ only so: each has its own links.
  otherProgram("INSERT INTO file (note, filename) SELECT id, '" + composed + "' FROM note");
  otherProgram("INSERT INTO file (note, filename) SELECT id, '" + decomposed + "' FROM note");
  fresh()->insertText(id, "[1](" + composed + ") [2](" + decomposed + ")", InsertPosition::end);
  fresh()->deleteAttachment(id, composed);
  EXPECT_EQ(text(id), other + "\n[2](" + decomposed + ")");
}

TEST_F(Attachments, SweepOnlyTheirOwnTemporaryFolders) {
  const std::string id = create("# T");
  const std::string own = "tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12420";
  const auto make = [&](const std::string& name) {
    const fs::path path = home.temporary() / name;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "x";
    return path;
  };
  const fs::path left = make(own + "/photo.png");
  const std::vector<fs::path> others{
      make("tavi-attach-exports/mine.txt"),
      make("tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12421/one"),
      make("tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12421/two"),
      make("tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12422/below/deep"),
      make("tavi-attach-0b9a6c1e-6076-437c-b7e8-566d8df12423/small"),
      make("tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12424 copy/x")};
  const fs::path link = home.temporary() / "tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12425";
  fs::create_directory_symlink(home.path() / "mine", link);
  std::ofstream(make("../mine/only")) << "x";
  const fs::path holder = home.temporary() / "tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12426";
  fs::create_directories(holder);
  fs::create_symlink(home.database(), holder / "link");
  const fs::path strangers = make("tavi-attach-0B9A6C1E-6076-437C-B7E8-566D8DF12427/theirs");
  if (geteuid() == 0) {  // only the superuser can give a folder away
    ASSERT_EQ(chown(strangers.parent_path().c_str(), 65534, 65534), 0);
  }
  const TemporaryFile inUse("y", "b");
  fresh()->addAttachment(id, "x", "a");
  EXPECT_TRUE(fs::exists(inUse.path()));
  EXPECT_EQ(fs::exists(strangers), geteuid() == 0);
  EXPECT_FALSE(fs::exists(left.parent_path()));
  for (const fs::path& path : others) EXPECT_TRUE(fs::exists(path)) << path;
  EXPECT_TRUE(fs::exists(link / "only"));
  EXPECT_TRUE(fs::is_symlink(holder / "link"));
}

TEST_F(Attachments, GiveWayToAFileOfTheSameName) {
  const std::string id = create("# T");
  fresh()->addAttachment(id, "1", "photo.jpg");
  EXPECT_EQ(fresh()->addAttachment(id, "2", "photo.jpg").attachments,
            (Texts{"photo.jpg", "photo 2.jpg"}));
  fresh()->addAttachment(id, "3", "photo.jpg");
  EXPECT_EQ(fresh()->readAttachment(id, "photo.jpg"), "1");
  EXPECT_EQ(fresh()->readAttachment(id, "photo 3.jpg"), "3");
  const std::string longest(255, 'x');
  fresh()->addAttachment(id, "4", longest);
  EXPECT_THROW(fresh()->addAttachment(id, "5", longest), std::runtime_error)
      << "\" 2\" has no room";
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
        std::string("\xFF.txt"), std::string("\x1B[2J\n/")}) {
    std::string said;
    try {
      fresh()->addAttachment(id, "x", name);
    } catch (const std::runtime_error& error) {
      said = error.what();
    }
    EXPECT_TRUE(said.starts_with("The file name \"") && said.ends_with(".")) << name << said;
    EXPECT_EQ(std::count_if(said.begin(), said.end(), [](char c) { return c >= 0 && c < ' '; }), 0);
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
  // Nor is the file of another name removed in its stead.
  fresh()->addAttachment(id, "kept", "kept.bin");
  otherProgram("INSERT INTO removedFile SELECT storedName || char(0) || 'x' FROM file");
  EXPECT_EQ(fresh()->readAttachment(id, "kept.bin"), "kept");
  EXPECT_EQ(fresh()->readAttachment(id, "kept.bin"), "kept");
}

// Whatever a stranger puts into the folder is not followed, not waited for and not removed.
TEST_F(Attachments, AreRegularFilesOnly) {
  const std::string id = create("# T");
  const fs::path files = home.data() / "files", secret = home.path() / "secret";
  std::ofstream(secret) << "not an attachment";
  for (const char* name : {"a.bin", "b.bin"}) fresh()->addAttachment(id, "bytes", name);
  const auto stored = [&](const std::string& name) {
    return files / value("SELECT storedName FROM file WHERE filename = '" + name + "'");
  };
  const fs::path pipe = stored("a.bin"), link = stored("b.bin");
  fs::remove(pipe);
  fs::remove(link);
  for (const fs::path& path : {pipe, files / "staged/pipe"})
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  for (const fs::path& path : {link, files / "staged/link"}) fs::create_symlink(secret, path);
  for (const char* name : {"a.bin", "b.bin"}) {
    EXPECT_EQ(refusal([&] { fresh()->readAttachment(id, name); }), "store_unavailable");
  }
  otherProgram("DELETE FROM file");
  fresh()->listTags({});
  EXPECT_EQ(value("SELECT count(*) FROM removedFile"), "0");
  EXPECT_TRUE(fs::exists(secret) && fs::is_symlink(link) && fs::is_fifo(pipe));
  EXPECT_TRUE(fs::is_symlink(files / "staged/link") && fs::is_fifo(files / "staged/pipe"));
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

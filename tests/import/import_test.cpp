#include "import/importer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <map>

#include "store/make_store.h"
#include "store/store_fixture.h"

namespace tavi::import {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A folder to import, and a store.
class Importing : public StoreTest {
 protected:
  using Files = std::map<std::string, std::string>;

  void write(const Files& files) {
    for (const auto& [name, bytes] : files) {
      fs::create_directories((folder / name).parent_path());
      std::ofstream(folder / name, std::ios::binary) << bytes;
    }
  }

  Report import(const ImportOptions& options = {}) {
    const auto store = makeImportingStore();
    Importer importer(options, store.get(), false, [](const auto&, const auto&) {});
    importer.run({vault::readFolder(folder)});
    return importer.report();
  }

  /// The texts of all notes by their titles.
  std::map<std::string, std::string> texts() {
    std::map<std::string, std::string> result;
    for (const Note& note : all(fresh()->listNotesWithContent({})))
      result[note.metadata.title] = note.content;
    return result;
  }

  NoteMetadata titled(const std::string& title) { return fresh()->metadataWithTitle(title); }

  fs::path folder = home.path() / "vault";
};

TEST_F(Importing, MakesANoteOfAFile) {
  const struct {
    const char* file;
    const char* bytes;
    const char* text;
  } files[] = {
      {"plain.md", "Some words.\n", "# plain\n\nSome words.\n"},
      {"heading.md", "# Mars\nRed.", "# Mars\nRed."},
      {"Doubled: no.md", "## doubled no\nText", "## doubled no\nText"},
      {"late.md", "badge\n\n# Project\n", "badge\n\n# Project\n"},
      {"section.md", "## Goals\n", "# section\n\n## Goals\n"},
      {"crlf.md", "One\r\n\r\ntwo", "# crlf\r\n\r\nOne\r\n\r\ntwo"},
      {"bom.md", "\xEF\xBB\xBF# Bom\n", "# Bom\n"},
      {"empty.md", "", "# empty\n"},
      {"fm.md", "---\ntitle: Given\ntags: x, y z\n---\n\nText", "# Given\n\nText\n\n#x #y z#"},
      {"same.md", "---\ntitle: Same!\n---\n# Same\n", "# Same\n"},
      {"rest.md", "---\ntags: [\"#a\"]\nrating: 5\n---\nText",
       "---\ntags: [\"#a\"]\nrating: 5\n---\n\n# rest\n\nText\n\n#a"},
      {"broken.md", "---\ntitle: a: b\n---\nText", "---\ntitle: a: b\n---\n\n# broken\n\nText"},
      {"tagged.md", "---\ntags: have\n---\n# T1 #have\n", "# T1 #have\n"},
      {"work/2024/deep.md", "# Deep\n", "# Deep\n\n#work/2024\n"},
      {"C# [old]/odd.md", "# Odd\n", "# Odd\n\n#C old#\n"},
  };
  std::vector<std::string> wanted;
  for (const auto& [file, bytes, text] : files) {
    write({{file, bytes}});
    wanted.emplace_back(text);
  }
  EXPECT_EQ(import().notes, std::size(files));
  std::vector<std::string> found;
  for (const auto& [title, text] : texts()) found.push_back(text);
  EXPECT_THAT(found, testing::UnorderedElementsAreArray(wanted));
}

TEST_F(Importing, RewritesLinksToWhatComesAlong) {
  write({{"img/a b.png", "A"},
         {"notes/img/a b.png", "B"},
         {"_resources/doc.pdf", "PDF"},
         {"_resources/no note.md", "x"},
         {"notes/Other.md", "---\naliases: [Nick]\n---\n# The other/one"},
         {"notes/Same.md", "# Same"},
         {"notes/n.md",
          "# N\n![](img/a%20b.png) ![x](<../img/a b.png> \"t\") [d](../_resources/doc.pdf#page=2)\n"
          "![[doc.pdf]] ![[a b.png|300]] [r][ref] [web](https://a.org/x.png) [up](../../out.png)\n"
          "[[Other]] [[nick|N]] [[notes/Other#Part]] [[same]] [[unknown]] ![[Same]]\n"
          "[o](Other.md) [Same](./Same.md) [gone](gone.png) `![](img/a%20b.png)`\n\n"
          "| [o](Other.md) | [[Other]] |\n|---|---|\n\n[ref]: ../_resources/doc.pdf\n"}});
  write({{"html.md",
          "# HTML\n<IMG width=3 SRC='img/a%20b.png' alt=\"A\"/> and\n\n"
          "<p>\n<img src=\"_resources/doc.pdf\">\n</p>\n\n`<img src=\"img/a%20b.png\">`\n"}});
  const Report report = import({.folderTags = false});
  EXPECT_EQ(texts().at("HTML"),
            "# HTML\n![A](a%20b.png) and\n\n"
            "<p>\n<img src=\"doc.pdf\">\n</p>\n\n`<img src=\"img/a%20b.png\">`\n");
  EXPECT_EQ(texts().at("N"),
            "# N\n![](a%20b.png) ![x](<a%20b%202.png> \"t\") [d](doc.pdf#page=2)\n"
            "[doc.pdf](doc.pdf)<!-- {\"preview\":\"true\"} --> ![](a%20b%202.png) [r](doc.pdf) "
            "[web](https://a.org/x.png) [up](../../out.png)\n"
            "[[The other\\/one|Other]] [[The other\\/one|N]] [[The other\\/one/Part]] [[same]] "
            "[[unknown]] [[Same]]\n"
            "[[The other\\/one|o]] [[Same]] [gone](gone.png) `![](img/a%20b.png)`\n\n"
            "| [o](Other.md) | [[The other\\/one]] |\n|---|---|\n\n[ref]: ../_resources/doc.pdf\n");
  const NoteMetadata note = titled("N");
  EXPECT_THAT(note.attachments, ElementsAre("a b.png", "a b 2.png", "doc.pdf"));
  EXPECT_EQ(fresh()->readAttachment(note.id, "a b.png"), "B");
  EXPECT_EQ(fresh()->readAttachment(note.id, "a b 2.png"), "A");
  EXPECT_EQ(report.files, 5U);
  ASSERT_EQ(report.remarks.size(), 1U);
  EXPECT_THAT(report.remarks[0].why, HasSubstr("gone.png"));
  ASSERT_EQ(report.unlinked.size(), 1U);
  EXPECT_EQ(report.unlinked[0].path, "_resources/no note.md");
}

TEST_F(Importing, KeepsDates) {
  write({{"file.md", "# File"},
         {"matter.md",
          "---\ncreated: 2020-02-03T04:05:06Z\nupdated: 2021-01-01T00:00:00Z\n---\n# M"}});
  const timespec past[2] = {{1'000'000'000, 0}, {1'000'000'000, 500'000'000}};
  utimensat(AT_FDCWD, (folder / "file.md").c_str(), past, 0);
  import();
  EXPECT_EQ(titled("File").created.seconds, 1'000'000'000.5);
  EXPECT_EQ(titled("File").modified.seconds, 1'000'000'000.5);
  EXPECT_EQ(formatISO8601(titled("M").created), "2020-02-03T04:05:06Z");
  EXPECT_EQ(formatISO8601(titled("M").modified), "2021-01-01T00:00:00Z");
}

TEST_F(Importing, TheSameAgainAddsNothingAndSaysWhatDiffers) {
  write({{"a.md", "# A\n![](x.png)"},
         {"x.png", "X"},
         {"b/b.md", "# B"},
         {"c.md", "# A\n![](x.png)"}});
  EXPECT_EQ(import().notes, 3U) << "two files with the same text are two notes";
  const std::string before = value("SELECT group_concat(version) FROM noteSummary");

  Report again = import();
  EXPECT_EQ(again.notes, 0U);
  EXPECT_EQ(again.unchanged, 3U);

  fresh()->moveNote(titled("B").id, NoteLocation::trash);
  write({{"a.md", "# A\nnow otherwise"}});
  again = import();
  EXPECT_EQ(again.notes, 0U);
  EXPECT_EQ(again.unchanged, 2U) << "a note in the trash is there";
  ASSERT_EQ(again.differing.size(), 1U);
  EXPECT_EQ(again.differing[0].path, "a.md");
  EXPECT_THAT(again.differing[0].why, HasSubstr("text, attachments"));

  fs::rename(folder, home.path() / "moved");
  folder = home.path() / "moved";
  again = import();
  EXPECT_EQ(again.unchanged, 2U) << "a folder that was moved is known by its texts";
  EXPECT_EQ(again.notes, 1U);
}

TEST_F(Importing, RefusesWhatIsNoTextByNameAndConvertsWhenAsked) {
  write({{"latin.md",
          "# Caf\xE9, die B\xFC"
          "cher und die gr\xFC\xDF"
          "e\n"},
         {"fine.md", "# Fine"}});
  Report report = import();
  EXPECT_EQ(report.notes, 1U);
  ASSERT_EQ(report.leftOut.size(), 1U);
  EXPECT_THAT(report.leftOut[0].why, HasSubstr("--encoding ISO-8859-1"));

  report = import({.encoding = "windows-1252"});
  EXPECT_EQ(report.notes, 1U);
  EXPECT_EQ(titled("Café, die Bücher und die grüße").contentLength, 37);
}

TEST_F(Importing, LeavesOutWhatIsNoFileOfTheFolder) {
  write({{"a.md", "# A\n![](link.png) ![](../outside.png) ![](pipe.png) ![](%2e%2e/outside.png)"},
         {"../outside.png", "secret"},
         {".hidden/h.md", "# H"},
         {"locked.md", "# L"}});
  fs::create_symlink("../outside.png", folder / "link.png");
  fs::create_symlink("..", folder / "loop");
  fs::create_symlink("a.md", folder / "alias.md");
  ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
  ASSERT_EQ(mkfifo((folder / "pipe.md").c_str(), 0600), 0);
  fs::create_directory(folder / "folder.md");
  truncate((folder / "locked.md").c_str(), off_t{101} << 20);
  const Report report = import();
  EXPECT_EQ(report.notes, 1U);
  EXPECT_THAT(titled("A").attachments, IsEmpty());
  std::vector<std::string> leftOut;
  for (const auto& file : report.leftOut) leftOut.push_back(file.path);
  EXPECT_THAT(leftOut, testing::UnorderedElementsAre("link.png", "loop", "alias.md", "pipe.png",
                                                     "pipe.md", "locked.md"));
  EXPECT_EQ(report.hidden, 1U);
}

TEST_F(Importing, EndsOnCtrlCWithWhatWasDoneDone) {
  for (int i = 0; i < 400; ++i) write({{std::to_string(i) + ".md", "# N"}});
  {
    const auto store = makeImportingStore();
    int planned = 0;
    Importer importer({}, store.get(), false, [&](const auto&, const auto&) {
      if (++planned == 300) std::raise(SIGINT);
    });
    importer.run({vault::readFolder(folder)});
    EXPECT_TRUE(importer.report().isInterrupted);
    EXPECT_EQ(importer.report().notes, 300U);
  }
  const Report rest = import();
  EXPECT_EQ(rest.unchanged, 300U);
  EXPECT_EQ(rest.notes, 100U);
}

TEST_F(Importing, ShowsNoControlCharactersOfNames) {
  write({{"bad\x1B[31m\n.md", "\xFF"}});
  EXPECT_THAT(import().text(), HasSubstr("bad\uFFFD[31m\uFFFD.md"));
}

}  // namespace
}  // namespace tavi::import

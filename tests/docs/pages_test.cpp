#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "docs/page.h"
#include "support/program.h"
#include "support/throwaway_home.h"

namespace {

using support::ProgramResult;

class Pages : public testing::Test {
 protected:
  Pages() { setenv("PATH", (PROGRAMS ":" + path).c_str(), 1); }
  ~Pages() override { setenv("PATH", path.c_str(), 1); }

  static ProgramResult bash(const std::string& script) {
    return support::runProgram({"-euo", "pipefail", "-c", script}, {}, "/bin/bash");
  }

  static std::vector<std::string> scriptsOf(const char* page) {
    std::vector<std::string> scripts;
    for (const docs::Block& block : docs::blocksOf(page))
      if (block.kind == "sh") scripts.push_back(block.text);
    return scripts;
  }

  const std::string path = std::getenv("PATH");
};

TEST_F(Pages, RecipesDoWhatTheirPageShows) {
  const std::vector<docs::Block> blocks = docs::blocksOf(DOCS "/recipes.md");
  ASSERT_EQ(blocks.front().kind, "setup");
  int recipes = 0;
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    if (blocks[i].kind != "sh" && blocks[i].kind != "cron") continue;
    SCOPED_TRACE("line " + std::to_string(blocks[i].line));
    const support::ThrowawayHome home;
    ASSERT_EQ(bash(blocks[0].text).exitCode, 0);
    std::string script = blocks[i].text;
    // The command of a cron line follows five fields.
    if (blocks[i].kind == "cron") script.erase(0, script.find("tavi"));
    ProgramResult result = bash(script);
    if (!result.output.empty() && result.output.back() != '\n') result.output += '\n';
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    const bool showsOutput = i + 1 < blocks.size() && blocks[i + 1].kind == "output";
    EXPECT_EQ(result.output, showsOutput ? blocks[i + 1].text : "") << result.errors;
    ++recipes;
  }
  EXPECT_GE(recipes, 9);
}

TEST_F(Pages, WhatAClientDidIsSeenAndTakenBack) {
  const support::ThrowawayHome home;
  const auto scripts = scriptsOf(DOCS "/letting-an-ai-in.md");
  ASSERT_EQ(scripts.size(), 3U);
  ASSERT_EQ(bash("tavicli create Mars -c 'The red planet.'; tavicli create Moon -c Grey.").exitCode,
            0);
  EXPECT_EQ(bash(scripts[0]).exitCode, 0);
  ASSERT_EQ(bash("tavicli overwrite --title Mars -c '# Mars\\nGone.'").exitCode, 0);
  const ProgramResult seen = bash(scripts[1]);
  EXPECT_EQ(seen.exitCode, 0) << seen.errors;
  EXPECT_THAT(seen.output, testing::HasSubstr("red planet"));
  const ProgramResult back = bash(scripts[2] + "\ntake_back Mars\ntavicli cat --title Mars");
  EXPECT_EQ(back.output, "# Mars\n\nThe red planet.") << back.errors;
}

TEST_F(Pages, NotesTravelOverGit) {
  const auto scripts = scriptsOf(DOCS "/several-machines.md");
  ASSERT_EQ(scripts.size(), 2U);
  const support::ThrowawayHome first;
  const std::string origin = first.path() / "origin";
  ASSERT_EQ(bash("git init -q --bare " + origin +
                 "; tavicli create One -c 'first #tag'; printf X |"
                 "tavicli attachments add --title One --filename x.png; tavi-export --git"
                 " ~/notes-as-files; cd ~/notes-as-files; git remote add origin " +
                 origin + "; git push -q -u origin HEAD")
                .exitCode,
            0);

  const support::ThrowawayHome second;
  const std::string atSecond = "HOME=" + second.path().string() + "; export HOME; ";
  const std::string atFirst = "HOME=" + first.path().string() + "; export HOME; ";
  ASSERT_EQ(bash("git clone -q " + origin + " ~/notes-as-files").exitCode, 0);
  ProgramResult result = bash(atSecond + scripts[1]);
  EXPECT_EQ(result.exitCode, 0) << result.output << result.errors;
  EXPECT_THAT(result.output, testing::HasSubstr("Imported 1 note with 1 attachment"));
  EXPECT_EQ(bash("git -C ~/notes-as-files status --porcelain").output, "")
      << "the same to the byte";

  ASSERT_EQ(bash(atFirst + "tavicli create Two; tavicli append --title One -c more").exitCode, 0);
  ASSERT_EQ(bash(atFirst + scripts[0]).exitCode, 0);
  result = bash(atSecond + "git -C ~/notes-as-files pull -q; tavi-import ~/notes-as-files");
  EXPECT_THAT(result.output, testing::HasSubstr("Imported 1 note with 0"));
  EXPECT_THAT(result.output, testing::HasSubstr("One/One.md: text (note "));
  EXPECT_EQ(bash(atSecond + "tavicli cat --title One").output.find("more"), std::string::npos);
}

}  // namespace

#include "cli/output/output_formatter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/cli_error.h"

namespace tavi {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(ParseFieldList, TakesNamesAsTheyAre) {
  const std::vector<std::string_view> available{"id", "title", "content", "matches"};
  const auto parsed = [&](const char* fields) {
    return *OutputFormatter::parseFieldList(available, fields);
  };
  EXPECT_EQ(OutputFormatter::parseFieldList(available, std::nullopt), std::nullopt);
  EXPECT_THAT(parsed(""), IsEmpty());
  EXPECT_THAT(parsed(",,"), IsEmpty());
  EXPECT_THAT(parsed(" id ,\ttitle,,id"), ElementsAre("id", "title", "id"));
  EXPECT_THAT(parsed("id, ,All"), ElementsAre("id", "", "All"));
  EXPECT_THAT(parsed("all"), ElementsAre("id", "title", "matches"));
  EXPECT_THAT(parsed("id,all,content"), ElementsAre("id", "id", "title", "matches", "content"));
}

template <class Record>
std::string fault(const char* fields) {
  FormatOptions options{fieldNames<Record>};
  options.fields = fields;
  try {
    OutputFormatter::resolveFields<Record>(options);
    return "";
  } catch (const TaviCLIError& error) {
    return error.what();
  }
}

TEST(ResolveFields, NamesTheFirstUnknownFieldAndTheValidOnes) {
  const std::string metadata =
      "id, title, locked, tags, hash, length, created, modified, pins, location, todos, done, "
      "attachments";
  EXPECT_EQ(fault<NoteMetadata>("id,content,x"),
            "Unknown field: content (valid: " + metadata + ")");
  EXPECT_EQ(fault<Note>("content,nosuch"),
            "Unknown field: nosuch (valid: " + metadata + ", content)");
  EXPECT_EQ(fault<SearchResult>("id, ,title"),
            "Unknown field:  (valid: " + metadata + ", matches)");
  EXPECT_EQ(fault<SearchResultWithContent>("contentHash"),
            "Unknown field: contentHash (valid: " + metadata + ", content, matches)");
  EXPECT_EQ(fault<SearchMatch>("x"), "Unknown field: x (valid: offset, snippet)");
  EXPECT_EQ(fault<AttachmentInfo>("x"), "Unknown field: x (valid: filename, size)");
  EXPECT_EQ(fault<TagRecord>("x"), "Unknown field: x (valid: tag)");
  EXPECT_EQ(fault<PinRecord>("x"), "Unknown field: x (valid: pin)");
}

TEST(OutputFormatter, Escapes) {
  EXPECT_EQ(OutputFormatter::escapeTSV("a\tb\\c\r\nd,e\"f"), R"(a\tb\\c\r\nd,e"f)");
  for (const auto& [text, cell] : {
           std::pair{"", ""},
           {" plain\ttext ", " plain\ttext "},
           {"a,b", "\"a,b\""},
           {"say \"hi\"", R"("say ""hi""")"},
           {"\"", R"("""")"},
           {"two\nlines", "\"two\nlines\""},
           {"cr\r", "\"cr\r\""},
       }) {
    EXPECT_EQ(OutputFormatter::escapeCSV(text), cell);
  }
}

TEST(OutputFormatter, UnescapesOnlyWhatItKnows) {
  for (const auto& [text, meant] : {
           std::pair{R"(a\nb\tc\rd\\e)", "a\nb\tc\rd\\e"},
           {R"(\\n)", R"(\n)"},
           {R"(\q\"\u0041)", R"(\q\"\u0041)"},
           {R"(end\)", R"(end\)"},
           {R"(\)", R"(\)"},
           {"", ""},
       }) {
    EXPECT_EQ(OutputFormatter::unescape(text), meant);
  }
}

}  // namespace
}  // namespace tavi

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <set>

#include "ArgumentParser/command_tree.h"
#include "cli/help.h"
#include "command_line.h"
#include "operations/attachment_operations.h"
#include "operations/location_operations.h"
#include "operations/pin_operations.h"
#include "operations/read_operations.h"
#include "operations/tag_operations.h"
#include "operations/write_operations.h"
#include "support/every_command.h"

// What holds of every command's page, whatever is declared.

namespace tavi {
namespace {

using ArgumentParser::ArgumentDefinition;
using ArgumentParser::CommandStack;
using ArgumentParser::DeclaredCommand;
using support::forEachCommand;
using support::linesOf;
using support::pathBelowRoot;
using support::wordsOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;

const ArgumentParser::CommandType kRoot = ArgumentParser::commandType<TaviCLI>();

bool isSubsequence(const std::vector<std::string>& some, const std::vector<std::string>& all) {
  auto next = some.begin();
  for (const std::string& word : all)
    if (next != some.end() && *next == word) ++next;
  return next == some.end();
}

std::size_t columns(const std::string& line) {
  return static_cast<std::size_t>(
      std::ranges::count_if(line, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

TEST(HelpPages, BreakNoWordAtAnyWidth) {
  const int wide = 10000;
  const int firstWithAbstracts = 27;  // they stand from column 26 on
  forEachCommand({kRoot}, [=](const CommandStack& stack) {
    const auto all = wordsOf(ArgumentParser::helpMessage(stack, wide));
    for (int width = 20; width <= 200; ++width) {
      const std::string page = ArgumentParser::helpMessage(stack, width);
      if (width < firstWithAbstracts) {
        ASSERT_TRUE(isSubsequence(wordsOf(page), all)) << page;
        continue;
      }
      ASSERT_EQ(wordsOf(page), all);
      for (const std::string& line : linesOf(page)) {
        if (columns(line) <= static_cast<std::size_t>(width) || line.starts_with("USAGE:"))
          continue;
        if (line.starts_with("  See '")) continue;
        // What overruns is one word; in front of it there is a label at most.
        ASSERT_EQ(line.find(' ', 26), line.npos) << width << ": " << line;
      }
    }
  });
}

class PrintedHelp : public testing::CommandLine {
 protected:
  std::string page(const CommandStack& stack) {
    auto arguments = pathBelowRoot(stack);
    arguments.insert(arguments.begin(), "help");
    return run(arguments).output;
  }
};

TEST_F(PrintedHelp, EndsWithTheFooterOrThePointerToThePagesBelow) {
  forEachCommand({kRoot}, [&](const CommandStack& stack) {
    if (stack.size() == 1) return;
    const std::string name = pathBelowRoot(stack).front();
    const auto command = stack.back().make();
    const auto* footer = dynamic_cast<const HelpFooter*>(command.get());
    const bool isContainer = !stack.back().configuration().subcommands.empty();
    EXPECT_EQ(footer == nullptr, isContainer) << name;
    const std::string end =
        isContainer ? "  See 'tavicli help " + name + " <subcommand>' for detailed help.\n"
                    : std::string(footer->footer()) + "\n";
    EXPECT_THAT(page(stack), EndsWith("\n\n" + end));
  });
}

TEST_F(PrintedHelp, IsWholeInTheFullReference) {
  std::string expected = run({}).output;
  forEachCommand({kRoot}, [&](const CommandStack& stack) {
    if (stack.size() == 1) return;
    std::string title = ArgumentParser::commandPath(stack);
    std::ranges::transform(title, title.begin(),
                           [](unsigned char letter) { return std::toupper(letter); });
    expected += "\n" + std::string(72, '-') + "\n" + title + "\n\n" + page(stack);
  });
  EXPECT_EQ(run({"help", "all"}).output, expected);
}

/// "newWindow" is written "new-window".
std::string written(std::string_view field) {
  std::string name;
  for (const char c : field) {
    if (std::isupper(static_cast<unsigned char>(c))) name += '-';
    name += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  if (name == "id") return "note-id";
  return name == "base-hash" ? "base" : name;
}

/// The fields of an operation that its command says in other words than the tool.
template <class Operation>
std::set<std::string> fieldsInOtherWords(const std::vector<std::string>& command) {
  const auto stack = resolveCommandPath(kRoot, command);
  const DeclaredCommand declared(stack.value().back());
  std::set<std::string> others;
  for (const FieldSchema& field : fieldSchemas<Operation>())
    for (const ArgumentDefinition& argument : declared.arguments.definitions())
      if (argument.valueName == written(field.doc.name) ||
          std::ranges::count(argument.names, "--" + written(field.doc.name),
                             &ArgumentParser::Name::written) > 0)
        if (argument.abstract.find(field.doc.description) == std::string::npos)
          others.insert(written(field.doc.name));
  return others;
}

TEST(HelpPages, DescribeFieldsInTheWordsOfTheTools) {
  using Fields = std::set<std::string>;
  EXPECT_EQ(fieldsInOtherWords<GetNoteOp>({"show"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<ReadNoteContentOp>({"cat"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<ListNotesOp>({"list"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<SearchNotesOp>({"search"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<SearchInNoteOp>({"search-in"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<CreateNoteOp>({"create"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<AppendToNoteOp>({"append"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<EditNoteOp>({"edit"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<OverwriteNoteOp>({"overwrite"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<OpenNoteOp>({"open"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<ListPinsOp>({"pin", "list"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<RenameTagOp>({"tags", "rename"}), Fields{});
  EXPECT_EQ(fieldsInOtherWords<DeleteTagOp>({"tags", "delete"}), Fields{});
  // Their first positional is the note or a name.
  EXPECT_EQ(fieldsInOtherWords<AddTagsOp>({"tags", "add"}), Fields{"note-id"});
  EXPECT_EQ(fieldsInOtherWords<RemoveTagsOp>({"tags", "remove"}), Fields{"note-id"});
  EXPECT_EQ(fieldsInOtherWords<AddPinsOp>({"pin", "add"}), Fields{"note-id"});
  EXPECT_EQ(fieldsInOtherWords<RemovePinsOp>({"pin", "remove"}), Fields{"note-id"});
  // These are brief about the note, and the file name is an option that must be there.
  const Fields note{"note-id", "title"};
  EXPECT_EQ(fieldsInOtherWords<TrashNoteOp>({"trash"}), note);
  EXPECT_EQ(fieldsInOtherWords<ArchiveNoteOp>({"archive"}), note);
  EXPECT_EQ(fieldsInOtherWords<RestoreNoteOp>({"restore"}), note);
  EXPECT_EQ(fieldsInOtherWords<ListTagsOp>({"tags", "list"}), note);
  EXPECT_EQ(fieldsInOtherWords<ListAttachmentsOp>({"attachments", "list"}), note);
  const Fields noteAndFile{"note-id", "title", "filename"};
  EXPECT_EQ(fieldsInOtherWords<AddAttachmentOp>({"attachments", "add"}), noteAndFile);
  EXPECT_EQ(fieldsInOtherWords<DeleteAttachmentOp>({"attachments", "delete"}), noteAndFile);
  EXPECT_EQ(fieldsInOtherWords<ReadAttachmentOp>({"attachments", "save"}), noteAndFile);
}

}  // namespace
}  // namespace tavi

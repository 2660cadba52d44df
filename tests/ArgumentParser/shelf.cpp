#include "shelf.h"

namespace shelf {

using ArgumentParser::CompletionDirectories;
using ArgumentParser::CompletionFiles;
using ArgumentParser::CompletionRequest;
using ArgumentParser::CompletionShellCommand;
using ArgumentParser::ValidationError;

namespace {

/// Titles that are hard to quote in shells. Fails if a word of the line is "nothing".
std::vector<std::string> titles(const CompletionRequest& request) {
  for (const std::string& word : request.words)
    if (word == "nothing") throw ValidationError("no titles");
  return {"War and Peace", "What's \"$HOME\"?", "Hello!World", "a:b",  "a;b & c",
          "Über [1] *",    "un`paired $(date)", "back\\slash", "-dash"};
}

/// Returns the request itself as candidates, so that tests can check it.
std::vector<std::string> echo(const CompletionRequest& request) {
  std::string words = "words";
  for (const std::string& word : request.words) words += "|" + word;
  return {words, "shell " + request.shell, request.shellVersion.empty() ? "no version" : "version"};
}

}  // namespace

void FormatOptions::declare(ArgumentSet& args) {
  args.option(format, {"--format"}).help("Output format: tsv, csv, json.");
  args.option(fields, {"--fields"}).help("Comma-separated field names, or \"all\".");
}

CommandConfiguration List::configuration() {
  return {.commandName = "list", .abstract = "List books.", .aliases = {"ls"}};
}

void List::declare(ArgumentSet& args) {
  args.option(sort, {"-s", "--sort"}).help("Sort field.").completes({"title", "year of print"});
  args.option(limit, {"-n", "--limit"}).help("Maximum number of books.");
  args.option(offset, {"-o", "--offset"}).help("Number of books to skip.");
  args.option(shelf, {"--shelf"}).help("Shelf to look at.");
  args.flag(count, {"--count"}).help("Print only the number of books.");
  args.group(formatOptions);
}

CommandConfiguration Edit::configuration() {
  return {.commandName = "edit", .abstract = "Edit a book's text."};
}

void Edit::declare(ArgumentSet& args) {
  args.argument(bookID, "book-id").help("Book ID.").completes(titles);
  args.option(title, {"-t", "--title"}).help("Book title.").completes(titles);
  args.option(finds, {"-f", "--find"}).takesAnything().help("Text to find.").completes(echo);
  args.option(replacements, {"--replace"})
      .takesAnything()
      .help("Text to put there.")
      .completes([this](const CompletionRequest& request) {
        std::vector<std::string> given{bookID.value_or("no book"), title.value_or("no title")};
        given.push_back("typed " + request.value);
        given.insert(given.end(), finds.begin(), finds.end());
        return given;
      });
  args.flag(all, "--all").help("Every occurrence.");
  args.flag(force, "--force").help("No questions.");
}

CommandConfiguration ListTags::configuration() {
  return {.commandName = "list", .abstract = "List tags."};
}

void ListTags::declare(ArgumentSet& args) {
  args.argument(bookID, "book-id").help("Book ID.");
  args.flag(count, {"-c", "--count"}).help("Print only the number of tags.");
}

CommandConfiguration AddTags::configuration() {
  return {.commandName = "add", .abstract = "Add tags to a book."};
}

void AddTags::declare(ArgumentSet& args) {
  args.argument(bookID, "book-id").help("Book ID, followed by tags.");
  args.argument(tags, "tags").help("Tags to add.").completes({"novel", "science fiction"});
  args.option(note, {"--note"}).help("Why.");
}

CommandConfiguration Tags::configuration() {
  return {.commandName = "tags",
          .abstract = "Manage tags.",
          .subcommands = {commandType<ListTags>(), commandType<AddTags>()},
          .defaultSubcommand = commandType<ListTags>()};
}

CommandConfiguration Scan::configuration() {
  return {.commandName = "scan",
          .abstract = "Scan pages.",
          .discussion = "Pages come out in the order given.\n\nOne sheet at a time.",
          .version = "2.1"};
}

void Scan::declare(ArgumentSet& args) {
  args.argument(page, "page").required().help("First page.").completes(CompletionFiles{{"txt"}});
  args.argument(pages, "more-pages").completes(CompletionDirectories{});
  args.option(color, {"--color"}).help("Ink.");
  args.option(size, {"--size"}).help("Paper.");
  args.option(printer, {"--printer"})
      .required()
      .help("Where to print.")
      .completes(CompletionShellCommand{"printf 'laser jet\\nink\\n'"});
  args.option(copies, "--copies").help("How many.").discussion("Each copy is a job of its own.");
}

void Scan::validate() {
  if (copies < 1) throw ValidationError("At least one copy.");
}

CommandConfiguration Shelf::configuration() {
  return {.commandName = "shelf",
          .abstract = "A shelf of books.",
          .subcommands = {commandType<List>(), commandType<Edit>(), commandType<Tags>(),
                          commandType<Scan>()}};
}

void Shelf::declare(ArgumentSet& args) {
  args.flag(version, {"-v", "--version"}).help("Show the version.");
}

}  // namespace shelf

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cli/cli_error.h"
#include "cli/commands/command.h"
#include "cli/output/output_formatter.h"
#include "cli/output/record_writer.h"
#include "cli/session.h"
#include "operations/read_operations.h"

/// The common part of the commands `list` and `search`.
namespace tavi {

/// --sort, --limit, --offset and --location. See ListNotesInput.
struct ListingOptions : ArgumentParser::ParsableArguments {
  std::string sort = "pinned,modified";
  std::optional<std::int64_t> limit;
  std::int64_t offset = 0;
  std::string location = "notes";

  /// `moreOnLimit` is appended to the help of --limit.
  explicit ListingOptions(std::string_view moreOnLimit = {}) : limitHelp(moreOnLimit) {}

  void declare(ArgumentSet& args) override {
    args.option(sort, {"-s", "--sort"})
        .help(ListingFields::sort.description)
        .completes(completions::sortCriteria);
    args.option(limit, {"-n", "--limit"}).help(help(ListingFields::limit.description, limitHelp));
    args.option(offset, {"-o", "--offset"}).help(ListingFields::offset.description);
    args.option(location, {"-l", "--location"})
        .help(ListingFields::location.description)
        .completes({"notes", "trash", "archive", "all"});
  }

  /// Throws TaviCLIError if an option was given that --count excludes.
  void refuseWithCount() const {
    if (limit || offset != 0)
      throw TaviCLIError::usage("--count cannot be combined with --limit or --offset");
  }

 private:
  std::string_view limitHelp;
};

/// The number of rows of an operation's output, with or without content.
template <class Lists>
std::int64_t countOf(const Lists& lists) {
  return std::visit([](const auto& list) { return list->count(); }, lists);
}

/// Writes the rows to the session's output, or a message to its errors if there are none.
template <class Record>
void writeList(RecordSource<Record>& rows, const FormatOptions& options) {
  const auto fields = OutputFormatter::resolveFields<Record>(options);
  Session& session = Session::current();
  const std::int64_t count = RecordWriter(session.output, options.format).writeRows(rows, fields);
  if (count == 0 && options.format != OutputFormat::json)
    session.errors.append("No notes found.\n");
}

/// The same for an operation's output, with or without content.
template <class Lists>
void writeLists(const Lists& lists, const FormatOptions& options) {
  std::visit([&](const auto& list) { writeList(*list, options); }, lists);
}

}  // namespace tavi

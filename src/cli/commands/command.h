#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ArgumentParser/parsable_command.h"
#include "cli/completions.h"
#include "cli/help.h"
#include "operations/operation.h"

/// The common part of the commands.
namespace tavi {

using ArgumentParser::ArgumentSet;
using ArgumentParser::CommandConfiguration;

/// A command without subcommands. Its help page has a footer.
class LeafCommand : public ArgumentParser::ParsableCommand, public HelpFooter {};

/// The configuration of a command that runs an operation.
template <class Operation>
CommandConfiguration commandFor(std::string_view name) {
  return {.commandName = std::string(name), .abstract = std::string(Operation::metadata.abstract)};
}

/// A help text: the description of an operation's field and additions for the command line.
inline std::string help(std::string_view description, std::string_view more,
                        std::string_view evenMore = {}) {
  return std::string(description).append(more).append(evenMore);
}
inline constexpr std::string_view interpretsEscapes = " Interprets \\n, \\t, \\r, \\\\.";
inline constexpr std::string_view readFromStdin = " Read from stdin when omitted.";

/// Identifies the note of a command: <note-id> or --title.
struct NoteOptions : ArgumentParser::ParsableArguments {
  std::optional<std::string> id, title;

  explicit NoteOptions(std::string_view idText = NoteFields::id.description,
                       std::string_view titleText = NoteFields::title.description)
      : idHelp(idText), titleHelp(titleText) {}
  /// With shorter help texts.
  static NoteOptions brief() {
    return NoteOptions("Note ID.", "Identify note by title (case-insensitive).");
  }

  void declare(ArgumentSet& args) override {
    args.argument(id, "note-id").help(idHelp).completes(completions::noteIDs);
    args.option(title, {"-t", "--title"}).help(titleHelp).completes(completions::titles);
  }

 private:
  std::string_view idHelp, titleHelp;
};

/// --no-update-modified
struct ModificationDateOption : ArgumentParser::ParsableArguments {
  bool preserve = false;

  void declare(ArgumentSet& args) override {
    args.flag(preserve, "--no-update-modified").help("Preserve the note's modification date.");
  }
};

}  // namespace tavi

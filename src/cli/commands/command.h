#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ArgumentParser/parsable_command.h"
#include "cli/completions.h"
#include "cli/help.h"
#include "operations/operation.h"

/// What the commands have in common.
namespace tavi {

using ArgumentParser::ArgumentSet;
using ArgumentParser::CommandConfiguration;

/// A command that does something, and says more below its help page.
class LeafCommand : public ArgumentParser::ParsableCommand, public HelpFooter {};

/// A command that is the face of an operation.
template <class Operation>
CommandConfiguration commandFor(std::string_view name) {
  return {.commandName = std::string(name), .abstract = std::string(Operation::metadata.abstract)};
}

/// A help text made from a field's description and more.
inline std::string help(std::string_view description, std::string_view more,
                        std::string_view evenMore = {}) {
  return std::string(description).append(more).append(evenMore);
}
inline constexpr std::string_view interpretsEscapes = " Interprets \\n, \\t, \\r, \\\\.";
inline constexpr std::string_view readFromStdin = " Read from stdin when omitted.";

/// The note that a command is about: <note-id> or --title.
struct NoteOptions : ArgumentParser::ParsableArguments {
  std::optional<std::string> id, title;

  explicit NoteOptions(std::string_view idText = NoteFields::id.description,
                       std::string_view titleText = NoteFields::title.description)
      : idHelp(idText), titleHelp(titleText) {}
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

#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"
#include "cli/commands/note_list_command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

/// `tags` and its subcommands.
namespace tavi {

/// `tavicli tags list`: see ListTagsOp.
class ListTagsCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_ = NoteOptions::brief();
  bool count_ = false;
  FormatOptions options_{fieldNames<TagRecord>};
};

/// `tavicli tags add`: see AddTagsOp.
class AddTagsCommand : public NoteListCommand {
 public:
  AddTagsCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli tags remove`: see RemoveTagsOp.
class RemoveTagsCommand : public NoteListCommand {
 public:
  RemoveTagsCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli tags rename`: see RenameTagOp. Accepts the names as positionals or as options.
class RenameTagCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  std::optional<std::string> old_, from_, new_, to_;
  bool force_ = false;
};

/// `tavicli tags delete`: see DeleteTagOp. Accepts the name as a positional or as an option.
class DeleteTagCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  std::optional<std::string> tag_, name_;
};

/// `tavicli tags`: lists tags unless a subcommand is given.
class TagsCommand : public ArgumentParser::ParsableCommand {
 public:
  static CommandConfiguration configuration();
};

}  // namespace tavi

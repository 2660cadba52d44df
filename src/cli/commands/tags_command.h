#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"
#include "cli/commands/note_list_command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

/// `tags` and its subcommands.
namespace tavi {

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

class AddTagsCommand : public NoteListCommand {
 public:
  AddTagsCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

class RemoveTagsCommand : public NoteListCommand {
 public:
  RemoveTagsCommand();
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

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

class DeleteTagCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  std::optional<std::string> tag_, name_;
};

class TagsCommand : public ArgumentParser::ParsableCommand {
 public:
  static CommandConfiguration configuration();
};

}  // namespace tavi

#pragma once

#include <optional>
#include <string>

#include "cli/commands/command.h"
#include "cli/output/field_tables.h"
#include "cli/output/output_format.h"

/// `attachments` and its subcommands.
namespace tavi {

/// `tavicli attachments list`: see ListAttachmentsOp.
class ListAttachmentsCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_ = NoteOptions::brief();
  FormatOptions options_{fieldNames<AttachmentInfo>};
};

/// `tavicli attachments add`: see AddAttachmentOp. Reads the bytes from standard input.
class AddAttachmentCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_ = NoteOptions::brief();
  std::optional<std::string> filename_;
  ModificationDateOption date_;
};

/// `tavicli attachments delete`: see DeleteAttachmentOp.
class DeleteAttachmentCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_ = NoteOptions::brief();
  std::optional<std::string> filename_;
  ModificationDateOption date_;
};

/// `tavicli attachments save`: see ReadAttachmentOp. Writes the bytes to standard output.
class SaveAttachmentCommand : public LeafCommand {
 public:
  static CommandConfiguration configuration();
  void declare(ArgumentSet& args) override;
  void run() override;
  std::string_view footer() const override;

 private:
  NoteOptions note_ = NoteOptions::brief();
  std::optional<std::string> filename_;
  FormatOnlyOptions options_;
};

/// `tavicli attachments`: lists attachments unless a subcommand is given.
class AttachmentsCommand : public ArgumentParser::ParsableCommand {
 public:
  static CommandConfiguration configuration();
};

}  // namespace tavi

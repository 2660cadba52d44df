#pragma once

#include "cli/commands/command.h"

/// The commands that move a note to the trash, to the archive, and back.
namespace tavi {

/// The common part of the three commands.
class MoveCommand : public LeafCommand {
 public:
  void declare(ArgumentSet& args) override { args.group(note_); }

 protected:
  template <class Operation>
  void move() const;

 private:
  NoteOptions note_ = NoteOptions::brief();
};

/// `tavicli trash`: see TrashNoteOp.
class TrashCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli archive`: see ArchiveNoteOp.
class ArchiveCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

/// `tavicli restore`: see RestoreNoteOp.
class RestoreCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

}  // namespace tavi

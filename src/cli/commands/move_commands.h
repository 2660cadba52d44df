#pragma once

#include "cli/commands/command.h"

/// The commands that move a note: to the trash, to the archive, and back.
namespace tavi {

class MoveCommand : public LeafCommand {
 public:
  void declare(ArgumentSet& args) override { args.group(note_); }

 protected:
  template <class Operation>
  void move() const;

 private:
  NoteOptions note_ = NoteOptions::brief();
};

class TrashCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

class ArchiveCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

class RestoreCommand : public MoveCommand {
 public:
  static CommandConfiguration configuration();
  void run() override;
  std::string_view footer() const override;
};

}  // namespace tavi
